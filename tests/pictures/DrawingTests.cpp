// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/Outlines.h"
#include "pictures/PngFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <numeric>

namespace {

using namespace orvane::kestrum::pictures;

double sum(const Mask& mask) { return std::accumulate(mask.coverage.begin(), mask.coverage.end(), 0.0); }

// Analytic: the area of a rectangle of 3.5 by 2 points at two pixels to the point.
TEST(AMask, CoversTheAreaOfItsOutline) { EXPECT_NEAR(sum(filled(rectangle(1, 1, 3.5, 2), 2)), 28, 0.02); }

TEST(AMask, CoversHalfOfAPixelThatItsEdgeHalves) {
    const Mask mask = filled(rectangle(1, 1, 0.5, 1), 1);
    EXPECT_NEAR(mask.at(1, 1), 0.5f, 1.0f / 255);
    EXPECT_EQ(mask.at(0, 1), 0);
    EXPECT_EQ(mask.at(-100, 1), 0);
}

TEST(ABlurredMask, KeepsItsSumAndItsMiddle) {
    const Mask sharp = filled(rectangle(10, 10, 6, 6), 1), soft = blurred(sharp, 3);
    EXPECT_NEAR(sum(soft), sum(sharp), 0.01 * sum(sharp)); // what three standard deviations leave out
    EXPECT_FLOAT_EQ(soft.at(9, 12), soft.at(16, 13));
}

// Reference: the rule for laying one translucent colour over another, worked by hand.
TEST(ACanvas, LaysColoursOverOneAnother) {
    Picture picture(2, 2);
    Canvas canvas(picture, 1);
    canvas.fill(rectangle(0, 0, 2, 2), Colour{1, 0, 0, 0.5f});
    canvas.fill(rectangle(0, 0, 2, 2), Colour{0, 0, 1, 0.5f});
    EXPECT_NEAR(picture.at(1, 1).red, 0.25f, 1e-6f);
    EXPECT_NEAR(picture.at(1, 1).blue, 0.5f, 1e-6f);
    EXPECT_NEAR(picture.at(1, 1).alpha, 0.75f, 1e-6f);
}

TEST(ABlurredPicture, OfOneColourStaysThatColourUpToItsEdges) {
    Picture picture(40, 30);
    for (Colour& pixel : picture.pixels)
        pixel = {0.25f, 0.5f, 0.75f, 1};
    const Picture soft = blurred(picture, 5);
    ASSERT_EQ(soft.width, 40);
    ASSERT_EQ(soft.height, 30);
    for (const Colour& pixel : soft.pixels)
        ASSERT_NEAR(pixel.green, 0.5f, 1e-5f);
}

// A level between two bytes comes out as a mixture of both whose mean is the level.
TEST(Dithering, KeepsTheMeanOfALevelBetweenTwoBytes) {
    Picture picture(200, 200);
    for (Colour& pixel : picture.pixels)
        pixel = {10.3f / 255, 10.3f / 255, 10.3f / 255, 1};
    const Bytes bytes = dithered(picture);
    double mean = 0;
    for (std::size_t i = 0; i < bytes.bytes.size(); i += 4) {
        ASSERT_TRUE(bytes.bytes[i] == 10 || bytes.bytes[i] == 11);
        mean += bytes.bytes[i] / 40000.0;
    }
    EXPECT_NEAR(mean, 10.3, 0.015); // six standard deviations of 40000 drawings
}

TEST(APngFile, GivesBackTheBytesThatWereWritten) {
    Bytes bytes{3, 2, {}};
    for (int i = 0; i < 24; ++i)
        bytes.bytes.push_back(static_cast<std::uint8_t>(i * 10));
    const std::filesystem::path file = std::filesystem::path(testing::TempDir()) / "kestrum_drawing_test.png";
    writePng(bytes, file);
    const Bytes read = readPng(file);
    std::filesystem::remove(file);
    EXPECT_EQ(read.width, 3);
    EXPECT_EQ(read.height, 2);
    EXPECT_EQ(read.bytes, bytes.bytes);
}

TEST(APngFile, ThatIsNoneIsRefused) {
    const std::vector<std::uint8_t> text{'n', 'o', 'n', 'e'};
    EXPECT_THROW(readPng(text), std::runtime_error);
}

} // namespace
