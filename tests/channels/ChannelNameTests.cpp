// SPDX-License-Identifier: GPL-3.0-or-later
#include "channels/ChannelNames.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace orvane::kestrum;
using channels::briefNames;

core::LayoutRow layoutNamed(std::string_view name) {
    const auto table = core::layoutTable();
    return *std::ranges::find(table, name, &core::LayoutRow::name);
}

// By hand, from where the table puts the loudspeakers.
TEST(ChannelNames, StandInBusOrder) {
    EXPECT_THAT(briefNames(layoutNamed("5.1 Film")), testing::ElementsAre("L", "C", "R", "Ls", "Rs", "LFE"));
    EXPECT_THAT(briefNames(layoutNamed("5.1 ITU")), testing::ElementsAre("L", "R", "C", "LFE", "Ls", "Rs"));
    EXPECT_THAT(briefNames(layoutNamed("5.1 ITU Logic")),
                testing::ElementsAre("L", "R", "Ls", "Rs", "C", "LFE"));
}

TEST(ChannelNames, TellTwoPairsOfSurroundsApartByWhichStandsFartherAhead) {
    EXPECT_THAT(briefNames(layoutNamed("7.1 SDDS Logic")),
                testing::ElementsAre("Lss", "Rss", "Lrs", "Rrs", "C", "LFE", "L", "R"));
    EXPECT_THAT(briefNames(layoutNamed("13.1")),
                testing::ElementsAre("L", "R", "C", "LFE", "Lrs", "Rrs", "Lss", "Rss", "Top", "Ltf", "Ctf",
                                     "Rtf", "Ltr", "Rtr"));
    EXPECT_THAT(briefNames(layoutNamed("Quad")), testing::ElementsAre("L", "R", "Ls", "Rs"));
}

TEST(ChannelNames, KnowPairsBetweenCentreAndSides) {
    EXPECT_THAT(briefNames(layoutNamed("7.1 SDDS")),
                testing::ElementsAre("L", "R", "C", "LFE", "Ls", "Rs", "Lc", "Rc"));
    EXPECT_THAT(briefNames(layoutNamed("9.1.6")),
                testing::ElementsAre("L", "R", "C", "LFE", "Lrs", "Rrs", "Lw", "Rw", "Lss", "Rss", "Ltf",
                                     "Rtf", "Ltr", "Rtr", "Ltm", "Rtm"));
}

TEST(ChannelNames, DifferWithinEachLayoutWhoseLoudspeakersStandApart) {
    for (const core::LayoutRow& layout : core::layoutTable()) {
        const std::vector<std::string> names = briefNames(layout);
        const std::set<std::string> different(names.begin(), names.end());
        EXPECT_EQ(different.size(), layout.name == "2.0 +/-0°" ? 1 : names.size()) << layout.name;
    }
}

// By hand: a person reads these words aloud.
TEST(SpokenNames, AreTheWordsOfTheShortOnes) {
    EXPECT_EQ(channels::spokenName("L"), "front left");
    EXPECT_EQ(channels::spokenName("Rs"), "right surround");
    EXPECT_EQ(channels::spokenName("Lrs"), "rear left");
    EXPECT_EQ(channels::spokenName("Rtm"), "right top middle");
    EXPECT_THROW(channels::spokenName("Q"), std::invalid_argument);
}

TEST(SpokenNames, DifferWithinEveryLayoutAndStandOnTheSideThatTheyName) {
    for (const core::LayoutRow& layout : core::layoutTable()) {
        std::set<std::string> words;
        for (const channels::Channel& channel : channels::channelsOf(layout)) {
            words.insert(channel.spoken);
            const bool left = channel.spoken.find("left") != std::string::npos;
            const bool right = channel.spoken.find("right") != std::string::npos;
            EXPECT_EQ(left, channel.speaker.azimuth < 0) << layout.name << ", " << channel.spoken;
            EXPECT_EQ(right, channel.speaker.azimuth > 0 && channel.speaker.azimuth < 180)
                << layout.name << ", " << channel.spoken;
        }
        EXPECT_EQ(words.size(), layout.speakers.size()) << layout.name;
    }
}

} // namespace
