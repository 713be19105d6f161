// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/Background.h"
#include "pictures/ControlBar.h"
#include "pictures/PictureSet.h"
#include "pictures/PngFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace orvane::kestrum::pictures;

const std::filesystem::path resources = KESTRUM_RESOURCES;

bool traced(const std::string& file) { return file == "normal.png" || file == "blurred.png"; }

/// Draws those of the set that `chosen` names and compares them with the committed ones.
template <class Chosen>
void compareWithCommitted(Chosen chosen) {
    for (const PictureSource& source : pictureSet(resources / "fonts")) {
        if (!chosen(source.file))
            continue;
        SCOPED_TRACE(source.file);
        const Bytes drawn = dithered(source.draw()),
                    committed = readPng(resources / "pictures" / source.file);
        ASSERT_EQ(drawn.width, committed.width);
        ASSERT_EQ(drawn.height, committed.height);
        // Equal but for pixels in which another processor's last bit falls to the other side of a rounding; where little
        // alpha lets colours be rounded coarsely such a pixel may differ by a whole step.
        std::size_t different = 0;
        for (std::size_t i = 0; i < drawn.bytes.size(); i += 4)
            if (!std::equal(drawn.bytes.begin() + static_cast<std::ptrdiff_t>(i),
                            drawn.bytes.begin() + static_cast<std::ptrdiff_t>(i) + 4,
                            committed.bytes.begin() + static_cast<std::ptrdiff_t>(i)))
                ++different;
        EXPECT_LE(different, drawn.bytes.size() / 4 / 1000) << "run scripts/draw-pictures";
    }
}

TEST(TheCommittedDiagrams, AreThoseOfTheTableOfLayouts) {
    compareWithCommitted([](const std::string& file) { return file.starts_with("layouts/"); });
}

TEST(TheCommittedPicturesOfWidgets, AreWhatTheProgramDraws) {
    compareWithCommitted(
        [](const std::string& file) { return !file.starts_with("layouts/") && !traced(file); });
}

TEST(TheCommittedPictures, HaveTheSizesOfTheSet) {
    for (const PictureSource& source : pictureSet(resources / "fonts")) {
        const Bytes committed = readPng(resources / "pictures" / source.file);
        EXPECT_EQ(committed.width, source.width) << source.file;
        EXPECT_EQ(committed.height, source.height) << source.file;
    }
}

TEST(TheCommittedPictures, AreAllDrawnByTheProgram) {
    std::set<std::string> drawn, present;
    for (const PictureSource& source : pictureSet(resources / "fonts"))
        drawn.insert(source.file);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(resources / "pictures"))
        if (entry.is_regular_file())
            present.insert(std::filesystem::relative(entry.path(), resources / "pictures").string());
    EXPECT_EQ(present, drawn);
}

TEST(ChosenPictures, AreThoseWhoseNamesBeginAsTold) {
    const auto names = [](const std::vector<std::string>& beginnings) {
        std::set<std::string> files;
        for (const PictureSource& source : chosen(pictureSet(resources / "fonts"), beginnings))
            files.insert(source.file);
        return files;
    };
    EXPECT_EQ(names({}).size(), pictureSet(resources / "fonts").size());
    EXPECT_EQ(names({"combo_", "layouts/9.1.2"}),
              (std::set<std::string>{"combo_arrow_24.png", "combo_arrow_36.png", "layouts/9.1.2.png"}));
    EXPECT_THROW(names({"combo_", "knob"}), std::runtime_error);
}

// The room takes minutes to trace, but the bar hides it: drawn over any ground it is what both backgrounds hold.
TEST(TheCommittedBackgrounds, HaveTheBarThatTheProgramDraws) {
    Picture ground(backgroundWidth, backgroundHeight);
    for (Colour& pixel : ground.pixels)
        pixel = grey(0);
    Canvas canvas(ground);
    drawControlBar(canvas, Font(resources / "fonts/Lato-Medium.ttf"));
    const Bytes drawn = dithered(ground), committed = readPng(resources / "pictures/normal.png");
    constexpr std::size_t firstRow = 1080; // a few below the bar's upper edge
    std::size_t different = 0;
    for (std::size_t i = 4 * firstRow * backgroundWidth; i < drawn.bytes.size(); ++i)
        if (std::abs(drawn.bytes[i] - committed.bytes[i]) > 1) // another processor's last bit
            ++different;
    EXPECT_EQ(different, 0u) << "run scripts/draw-pictures normal blurred";
}

// Both show one room: under the controls they are equal, elsewhere the blurred one has far less detail.
TEST(TheBlurredBackground, HasTheSharpOnesBarAndASofterRoom) {
    const Bytes sharp = readPng(resources / "pictures/normal.png"),
                soft = readPng(resources / "pictures/blurred.png");
    const auto at = [](const Bytes& picture, int x, int y) {
        return static_cast<int>(
            picture.bytes[4 * (static_cast<std::size_t>(y) * backgroundWidth + static_cast<std::size_t>(x)) +
                          1]);
    };
    const auto detail = [&](const Bytes& picture) {
        long sum = 0;
        for (int y = 200; y < 800; ++y)
            for (int x = 400; x < 1760; ++x)
                sum += std::abs(at(picture, x + 4, y) - at(picture, x, y));
        return sum;
    };
    for (int y = 1080; y < sharp.height; ++y)
        for (int x = 0; x < sharp.width; ++x)
            ASSERT_EQ(at(sharp, x, y), at(soft, x, y)) << x << ", " << y;
    EXPECT_LT(detail(soft), detail(sharp) / 2);
}

} // namespace
