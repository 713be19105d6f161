// SPDX-License-Identifier: GPL-3.0-or-later
// Expected names are copied by hand from the plug-in's lists.
#include "render/Names.h"

#include "parameters/core/LayoutTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

using orvane::kestrum::render::layoutChoices;
using orvane::kestrum::render::sceneChoices;
using orvane::kestrum::render::usualLayout;
using ::testing::HasSubstr;
using ::testing::SizeIs;
namespace core = orvane::kestrum::core;

TEST(Names, CoverAllLayoutsAndScenesInTheParametersOrder) {
    EXPECT_THAT(layoutChoices().all(), SizeIs(32));
    EXPECT_EQ(layoutChoices().all().front().name, "1.0");
    EXPECT_EQ(layoutChoices().all().back().name, "13.1");
    EXPECT_THAT(sceneChoices().all(), SizeIs(16));
    EXPECT_EQ(sceneChoices().all().front().name, "Mix Room");
    EXPECT_EQ(sceneChoices().all().back().name, "Kitchen");
}

TEST(Names, TheNamesThatTheMenusShowAreKnownToo) {
    EXPECT_EQ(layoutChoices().find("Stereo").name, "2.0 +/-30°");
    EXPECT_EQ(layoutChoices().find("Mono Summed").name, "2.0 +/-0°");
    EXPECT_EQ(sceneChoices().find("Mix Room B").name, "Mix Room Small");
}

TEST(Names, EveryLayoutTellsItsChannels) {
    EXPECT_EQ(layoutChoices().find("5.1 ITU").channelCount, 6u);
    EXPECT_EQ(layoutChoices().find("9.1.6").channelCount, 16u);
    for (const auto& choice : layoutChoices().all())
        EXPECT_GT(choice.channelCount, 0u) << choice.name;
}

TEST(UsualLayouts, HaveAsManyChannelsAsTheFile) {
    int known = 0;
    for (std::uint64_t count = 0; count <= 20; ++count) {
        if (const auto layout = usualLayout(count)) {
            EXPECT_EQ(layoutChoices().find(*layout).channelCount, count);
            ++known;
        }
    }
    EXPECT_EQ(known, 13);
}

TEST(UsualLayouts, CountsWithoutACustomHaveNone) {
    for (const std::uint64_t count : {0u, 3u, 13u, 15u, 17u})
        EXPECT_FALSE(usualLayout(count)) << count;
}

/// Whole degrees as the README prints them, with a typographic minus.
std::string degrees(float value) {
    const std::string digits = std::to_string(std::lround(std::abs(value)));
    return value < 0 ? "\u2212" + digits : digits;
}

std::string placeOf(const core::SpeakerRow& speaker) {
    if (speaker.lowFrequency)
        return "LFE";
    return degrees(speaker.azimuth) + (speaker.elevation != 0 ? "/" + degrees(speaker.elevation) : "");
}

/// Expected rows come from the plug-in's own table, so a mixer who wires a bus by the README wires it right.
TEST(Readme, ListsEveryLayoutAsThePlugInHasIt) {
    std::ifstream file(std::filesystem::path(KESTRUM_DOCS).parent_path() / "README.md");
    const std::string readme{std::istreambuf_iterator<char>(file), {}};
    for (const core::LayoutRow& layout : core::layoutTable()) {
        const auto& choice = layoutChoices().find(layout.name);
        std::string order;
        for (const core::SpeakerRow& speaker : layout.speakers)
            order += (order.empty() ? "" : ", ") + placeOf(speaker);
        EXPECT_THAT(readme, HasSubstr("| " + choice.name + " | " + choice.shownAs + " | " +
                                      std::to_string(layout.speakers.size()) + " | " + order + " |\n"));
    }
}

} // namespace
