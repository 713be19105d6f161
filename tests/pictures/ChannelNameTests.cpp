// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/ChannelNames.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>

namespace {

using namespace orvane::kestrum;
using pictures::channelNames;

core::LayoutRow layoutNamed(std::string_view name) {
    const auto table = core::layoutTable();
    return *std::ranges::find(table, name, &core::LayoutRow::name);
}

// By hand, from where the table puts the loudspeakers.
TEST(ChannelNames, StandInBusOrder) {
    EXPECT_THAT(channelNames(layoutNamed("5.1 Film")),
                testing::ElementsAre("L", "C", "R", "Ls", "Rs", "LFE"));
    EXPECT_THAT(channelNames(layoutNamed("5.1 ITU")), testing::ElementsAre("L", "R", "C", "LFE", "Ls", "Rs"));
    EXPECT_THAT(channelNames(layoutNamed("5.1 ITU Logic")),
                testing::ElementsAre("L", "R", "Ls", "Rs", "C", "LFE"));
}

TEST(ChannelNames, TellTwoPairsOfSurroundsApartByWhichStandsFartherAhead) {
    EXPECT_THAT(channelNames(layoutNamed("7.1 SDDS Logic")),
                testing::ElementsAre("Lss", "Rss", "Lrs", "Rrs", "C", "LFE", "L", "R"));
    EXPECT_THAT(channelNames(layoutNamed("13.1")),
                testing::ElementsAre("L", "R", "C", "LFE", "Lrs", "Rrs", "Lss", "Rss", "Top", "Ltf", "Ctf",
                                     "Rtf", "Ltr", "Rtr"));
    EXPECT_THAT(channelNames(layoutNamed("Quad")), testing::ElementsAre("L", "R", "Ls", "Rs"));
}

TEST(ChannelNames, KnowPairsBetweenCentreAndSides) {
    EXPECT_THAT(channelNames(layoutNamed("7.1 SDDS")),
                testing::ElementsAre("L", "R", "C", "LFE", "Ls", "Rs", "Lc", "Rc"));
    EXPECT_THAT(channelNames(layoutNamed("9.1.6")),
                testing::ElementsAre("L", "R", "C", "LFE", "Lrs", "Rrs", "Lw", "Rw", "Lss", "Rss", "Ltf",
                                     "Rtf", "Ltr", "Rtr", "Ltm", "Rtm"));
}

TEST(ChannelNames, DifferWithinEachLayoutWhoseLoudspeakersStandApart) {
    for (const core::LayoutRow& layout : core::layoutTable()) {
        const std::vector<std::string> names = channelNames(layout);
        const std::set<std::string> different(names.begin(), names.end());
        EXPECT_EQ(different.size(), layout.name == "2.0 +/-0°" ? 1 : names.size()) << layout.name;
    }
}

} // namespace
