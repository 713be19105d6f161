// SPDX-License-Identifier: GPL-3.0-or-later
// Expected values by hand, on pictures of a few pixels.
#include "Pictures.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using namespace orvane::kestrum::host;
using namespace orvane::kestrum::host::test;

Image steps() { // 4 x 2, red grows to the right, green downwards
    Image image(4, 2);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 4; ++x) {
            image.pixel(x, y)[0] = static_cast<std::uint8_t>(60 * x);
            image.pixel(x, y)[1] = static_cast<std::uint8_t>(100 * y);
        }
    return image;
}

TEST(Pictures, WrittenOnesAreReadBackAsTheyWere) {
    const auto file = std::filesystem::path(::testing::TempDir()) / "kestrum-pictures" / "steps.png";
    writePng(steps(), file);
    EXPECT_EQ(readPng(file), steps());
    std::filesystem::remove_all(file.parent_path());
    EXPECT_THROW(readPng(file), std::runtime_error);
}

TEST(Pictures, AreCutAndPastedWithBlackBeyondTheEdges) {
    const Image part = cut(steps(), 2, 1, 4, 2);
    EXPECT_EQ(part.pixel(0, 0)[0], 120);
    EXPECT_EQ(part.pixel(1, 0)[1], 100);
    EXPECT_EQ(part.pixel(2, 0)[0], 0);
    EXPECT_EQ(part.pixel(0, 1)[1], 0);
    Image back(4, 2);
    paste(cut(steps(), -1, 0, 5, 2), back, -1, 0);
    EXPECT_EQ(back, steps());
}

TEST(Pictures, ShrinkToTheMeansOfTheirPixels) {
    const Image small = shrink(steps(), 2);
    ASSERT_EQ(small.width, 2);
    ASSERT_EQ(small.height, 1);
    EXPECT_EQ(small.pixel(0, 0)[0], 30);
    EXPECT_EQ(small.pixel(1, 0)[0], 150);
    EXPECT_EQ(small.pixel(1, 0)[1], 50);
}

TEST(Pictures, DifferByThePixelsBeyondTheTolerance) {
    Image other = steps();
    other.pixel(3, 1)[2] = 10;
    other.pixel(0, 0)[1] = 30;
    const auto difference = compare(steps(), other, 10);
    EXPECT_EQ(difference.largest, 30);
    EXPECT_EQ(difference.countBeyond, 1u);
    EXPECT_EQ(difference.picture.pixel(0, 0)[2], 255);
    EXPECT_EQ(difference.picture.pixel(3, 1)[0], 60);
    EXPECT_THROW(compare(steps(), Image(4, 3), 10), std::runtime_error);
}

/// The smallest thing that must be seen: a thin digit of a text box, three pixels by seven.
TEST(Pictures, LookAlikeWithOtherGlyphEdgesButNotWithAnotherDigit) {
    const Image plain(60, 30);
    Image edges = plain;
    for (int y = 0; y < 30; ++y)
        edges.pixel(5, y)[1] = 24;
    EXPECT_TRUE(looksLike(edges, plain));
    Image digit = plain;
    for (int y = 10; y < 17; ++y)
        for (int x = 20; x < 23; ++x)
            digit.pixel(x, y)[0] = 90;
    EXPECT_FALSE(looksLike(digit, plain));
    EXPECT_THROW(looksLike(Image(60, 31), plain), std::runtime_error);
}

TEST(Pictures, CountThePixelsOfAColour) {
    EXPECT_EQ(countOf(steps(), 60, 0, 0, 0), 1);
    EXPECT_EQ(countOf(steps(), 60, 50, 0, 50), 2);
}

TEST(Pictures, FillAContactSheetRowByRow) {
    ContactSheet sheet(2, 2, 4, 2);
    for (int number = 0; number < 3; ++number)
        sheet.add(steps());
    EXPECT_EQ(sheet.image().width, 2 * 8 + 4);
    EXPECT_EQ(sheet.image().height, 2 * 6 + 4);
    EXPECT_EQ(cut(sheet.image(), 12, 4, 4, 2), steps());
    EXPECT_EQ(cut(sheet.image(), 4, 10, 4, 2), steps());
    EXPECT_EQ(cut(sheet.image(), 12, 10, 4, 2), Image(4, 2));
}

} // namespace
