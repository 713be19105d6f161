// SPDX-License-Identifier: GPL-3.0-or-later
// Which channel of a named bus goes to which loudspeaker. Reference: where a name says that its loudspeaker stands, told here in
// degrees and compared with the table of layouts.
#include "parameters/core/BusNames.h"

#include "parameters/core/LayoutTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace orvane::kestrum::core;
using orvane::ChannelOrder;
using ::testing::ElementsAre;

std::vector<std::string_view> words(std::string_view text) {
    std::vector<std::string_view> found;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        found.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return found;
}

/// The first entries of an order, as many as the bus has channels.
std::vector<int> order(std::string_view layout, std::string_view bus) {
    const auto names = words(bus);
    const ChannelOrder::Table table = orderByName(layout, names);
    return {table.begin(), table.begin() + static_cast<std::ptrdiff_t>(names.size())};
}

std::vector<int> inTheirOwnOrder(std::size_t count) {
    return {ChannelOrder::identity.begin(),
            ChannelOrder::identity.begin() + static_cast<std::ptrdiff_t>(count)};
}

const LayoutRow& layoutCalled(std::string_view name) {
    const auto table = layoutTable();
    return *std::ranges::find(table, name, &LayoutRow::name);
}

/// Where a name's loudspeaker stands: its side, -1 for left, and the angles from the front between which it may.
struct Place {
    std::string_view name;
    int side;
    float nearest;
    float farthest;
    bool raised = false;
};

/// @param sides whether a pair stands beside the listener.
/// @param heights pairs of heights that the layout has.
Place placeOf(std::string_view name, bool sides, int heights) {
    const int side = name.back() == 'r' || name[0] == 'R' ? 1 : -1;
    if (name == "L" || name == "R")
        return {name, side, 30, 45};
    if (name == "C")
        return {name, 0, 0, 0};
    if (name == "Ls" || name == "Rs")
        return sides ? Place{name, side, 135, 150} : Place{name, side, 110, 110};
    if (name == "Cs")
        return {name, 0, 180, 180};
    if (name == "Lc" || name == "Rc")
        return {name, side, 60, 60};
    if (name == "Sl" || name == "Sr")
        return {name, side, 90, 110};
    if (name == "Tfc" || name == "Tc")
        return {name, 0, 0, 0, true};
    if (name == "Tfl" || name == "Tfr")
        return {name, side, 30, 45, true};
    if (name == "Trl" || name == "Trr")
        return {name, side, 110, 135, true};
    EXPECT_THAT((std::set<std::string_view>{"Tsl", "Tsr"}), ::testing::Contains(name));
    return {name, side, heights == 1 ? 30.0f : 80.0f, 90, true};
}

class NamedLayouts : public ::testing::TestWithParam<NamedLayoutRow> {};

TEST_P(NamedLayouts, HaveEachNameWhereItsLoudspeakerStands) {
    const LayoutRow& layout = layoutCalled(GetParam().layout);
    const auto names = words(GetParam().names);
    ASSERT_EQ(names.size(), layout.speakers.size());
    const bool sides = std::ranges::count(names, "Sl") > 0;
    const auto heights = std::ranges::count_if(
        names, [](std::string_view name) { return name == "Tfl" || name == "Tsl" || name == "Trl"; });
    for (std::size_t channel = 0; channel < names.size(); ++channel) {
        const SpeakerRow& speaker = layout.speakers[channel];
        EXPECT_EQ(speaker.lowFrequency, names[channel] == "Lfe") << channel;
        if (speaker.lowFrequency)
            continue;
        const Place place = placeOf(names[channel], sides, static_cast<int>(heights));
        const float angle = std::abs(speaker.azimuth);
        EXPECT_TRUE(angle >= place.nearest && angle <= place.farthest)
            << place.name << ' ' << speaker.azimuth;
        EXPECT_EQ(speaker.elevation > 0, place.raised) << place.name;
        if (place.side != 0) {
            EXPECT_EQ(speaker.azimuth > 0 ? 1 : -1, place.side) << place.name;
        } else if (place.raised) {
            EXPECT_EQ(speaker.elevation, place.name == "Tc" ? 90 : 30);
        }
    }
}

/// Property: whatever order a bus has its names in, the channel of each name goes to the loudspeaker of that name.
TEST_P(NamedLayouts, FindEachNameWhereverItStandsOnTheBus) {
    auto bus = words(GetParam().names);
    const auto names = bus;
    for (int turn = 0; turn < 16; ++turn) {
        const ChannelOrder::Table found = orderByName(GetParam().layout, bus);
        for (std::size_t channel = 0; channel < names.size(); ++channel)
            EXPECT_EQ(bus[found[channel]], names[channel]);
        std::rotate(bus.begin(), bus.begin() + 1, bus.end());
        std::swap(bus[0], bus[static_cast<std::size_t>(turn) % bus.size()]);
    }
}

TEST_P(NamedLayouts, TakeTheBusAsItStandsWhenANameIsMissingOrForeignOrTooMuch) {
    auto names = words(GetParam().names);
    std::ranges::reverse(names);
    const auto own = ChannelOrder::identity;
    for (std::size_t channel = 0; channel < names.size(); ++channel) {
        for (const std::string_view other :
             {std::string_view(), std::string_view("Lfe2"), names[channel == 0 ? 1 : 0]}) {
            auto changed = names;
            changed[channel] = other;
            EXPECT_EQ(orderByName(GetParam().layout, changed), own) << channel << ' ' << other;
        }
    }
    auto fewer = names;
    fewer.pop_back();
    EXPECT_EQ(orderByName(GetParam().layout, fewer), own);
    auto more = names;
    more.emplace_back("Bfl");
    EXPECT_EQ(orderByName(GetParam().layout, more), own);
}

INSTANTIATE_TEST_SUITE_P(AsListed, NamedLayouts,
                         ::testing::ValuesIn(namedLayoutTable().begin(), namedLayoutTable().end()),
                         [](const auto& row) {
                             std::string name = "Layout_" + std::string(row.param.layout);
                             std::ranges::replace_if(
                                 name, [](char letter) { return letter == '.' || letter == ' '; }, '_');
                             return name;
                         });

/// By hand from the interface's order and the table of layouts.
TEST(NamedBus, GivesTheSidesAndTheRearOfEachLayoutTheirOwnChannels) {
    EXPECT_THAT(order("7.1", "L R C Lfe Ls Rs Sl Sr"), ElementsAre(0, 1, 2, 3, 6, 7, 4, 5));
    EXPECT_THAT(order("7.1.4", "L R C Lfe Sl Sr Tfl Tfr Trl Trr Ls Rs"),
                ElementsAre(0, 1, 2, 3, 10, 11, 4, 5, 6, 7, 8, 9));
    EXPECT_THAT(order("9.1.6", "Lc Rc C Lfe Sl Sr Tfl Tfr Trl Trr Ls Rs L R Tsl Tsr"),
                ElementsAre(12, 13, 2, 3, 10, 11, 0, 1, 4, 5, 6, 7, 8, 9, 14, 15));
}

TEST(NamedBus, WithOnePairOfHeightsGivesItToTheOnlyHeightsOfTheLayout) {
    for (const std::string_view bus :
         {"Tfl Tfr L R C Lfe Sl Sr Ls Rs", "Tsl Tsr L R C Lfe Sl Sr Ls Rs", "Trl Trr L R C Lfe Sl Sr Ls Rs"})
        EXPECT_THAT(order("7.1.2", bus), ElementsAre(2, 3, 4, 5, 6, 7, 8, 9, 0, 1)) << bus;
    EXPECT_THAT(order("5.0.2", "Tsl Tsr L R C Ls Rs"), ElementsAre(2, 3, 4, 5, 6, 0, 1));
    // Half a pair of each kind is no pair.
    EXPECT_EQ(order("5.0.2", "Tsl Tfr L R C Ls Rs"), inTheirOwnOrder(7));
}

TEST(NamedBus, IsTakenAsItStandsByLayoutsWithAnOrderOfTheirOwn) {
    const std::set<std::string_view> byName = [] {
        std::set<std::string_view> names;
        for (const NamedLayoutRow& row : namedLayoutTable())
            names.insert(row.layout);
        return names;
    }();
    bool standard = false;
    for (const LayoutRow& layout : layoutTable()) {
        standard = standard || layout.name == "5.0 ITU";
        const bool ownOrder = layout.name.find("Film") != std::string_view::npos ||
                              layout.name.find("Logic") != std::string_view::npos ||
                              layout.name.find("SDDS") != std::string_view::npos;
        EXPECT_EQ(byName.contains(layout.name), standard && !ownOrder) << layout.name;
    }
    EXPECT_EQ(order("5.1 Film", "L R C Lfe Ls Rs"), inTheirOwnOrder(6));
    EXPECT_EQ(order("7.1 SDDS Logic", "L R C Lfe Sl Sr Ls Rs"), inTheirOwnOrder(8));
    EXPECT_EQ(order("Quad", "R L Ls Rs"), inTheirOwnOrder(4));
    EXPECT_EQ(order("no such layout", "L R C Ls Rs"), inTheirOwnOrder(5));
}

/// A host that only counts sends the interface's first so many speakers; their names mean nothing.
TEST(CountedBus, IsTakenAsItStandsByEveryLayout) {
    const std::string_view first = "L R C Lfe Ls Rs Lc Rc Cs Sl Sr Tc Tfl Tfc Tfr Trl";
    const auto names = words(first);
    ASSERT_EQ(names.size(), 16u);
    for (std::size_t count = 0; count <= names.size(); ++count)
        for (const LayoutRow& layout : layoutTable())
            EXPECT_EQ(orderByName(layout.name, std::span(names).first(count)), ChannelOrder::identity)
                << layout.name << ' ' << count;
    const std::vector<std::string_view> nameless(40);
    for (const LayoutRow& layout : layoutTable())
        EXPECT_EQ(orderByName(layout.name, std::span(nameless).first(layout.speakers.size())),
                  ChannelOrder::identity);
    EXPECT_EQ(orderByName("7.1", nameless), ChannelOrder::identity); // wider than any layout
}

} // namespace
