// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/SupportedLayouts.h"

#include "ListedTables.h"
#include "StubComponentFactory.h"
#include "parameters/core/GainCompensation.h"
#include "parameters/core/LayoutTable.h"
#include "parameters/core/MenuPresentation.h"
#include "parameters/core/SelectorId.h"
#include "parameters/core/SpeakerSetupFallback.h"
#include "support/RealtimeScope.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace orvane::kestrum::core;
using orvane::Speaker;
using Properties = ISupportedLayouts::Properties;

// Test vectors of FIPS 180-2 for "abc" and for the empty message, their first four bytes little-endian.
TEST(SelectorId, IsTheHeadOfTheSha256OfTheName) {
    EXPECT_EQ(selectorId("abc"), 0xBF1678BAU);
    EXPECT_EQ(selectorId(""), 0x42C4B0E3U);
    EXPECT_EQ(selectorId("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"), 0x616A8D24U);
}

TEST(SelectorId, TakesTheDegreeSignAsItsTwoUtf8Bytes) {
    EXPECT_EQ(selectorId("2.0 +/-30\xC2\xB0"), 0xEDE88239U);
    EXPECT_NE(selectorId("2.0 +/-30\xB0"), 0xEDE88239U);
}

class SupportedLayoutsTable : public ::testing::Test {
protected:
    test::StubComponentFactory factory;
    const SupportedLayouts table{factory};

    std::vector<Properties> all() const {
        std::vector<Properties> layouts;
        table.forEach([&layouts](const Properties& layout) { layouts.push_back(layout); });
        return layouts;
    }

    const Properties& named(std::string_view name) const { return table.get(selectorId(name)); }
};

/// Reads "-30, 80/45, LFE".
std::vector<Speaker> parse(std::string_view text) {
    std::vector<Speaker> speakers;
    std::istringstream entries{std::string(text)};
    for (std::string entry; std::getline(entries >> std::ws, entry, ',');) {
        if (entry == "LFE") {
            speakers.push_back({orvane::SpatialPosition(0, 0, 0), Speaker::Type::lowFrequency});
            continue;
        }
        const auto slash = entry.find('/');
        const float elevation = slash == std::string::npos ? 0.0f : std::stof(entry.substr(slash + 1));
        speakers.push_back(
            {orvane::SpatialPosition(elevation, std::stof(entry), 1.5f), Speaker::Type::loudspeaker});
    }
    return speakers;
}

// Expected values: the list as people read it.
TEST_F(SupportedLayoutsTable, HasTheListedLayoutsInOrder) {
    const auto layouts = all();
    ASSERT_EQ(layouts.size(), 32u);
    ASSERT_EQ(std::size(listed::layouts), 32u);
    EXPECT_EQ(layouts.front().name, "1.0");
    EXPECT_EQ(layouts.back().name, "13.1");
    for (std::size_t i = 0; i < layouts.size(); ++i) {
        const listed::Layout& expected = listed::layouts[i];
        EXPECT_EQ(layouts[i].name, expected.name);
        EXPECT_EQ(layouts[i].id, expected.id) << expected.name;
        EXPECT_EQ(layouts[i].channelCount, expected.channels) << expected.name;
        const auto speakers = parse(expected.speakers);
        ASSERT_EQ(layouts[i].speakers.size(), expected.channels) << expected.name;
        ASSERT_EQ(speakers.size(), expected.channels) << expected.name;
        for (std::size_t channel = 0; channel < speakers.size(); ++channel) {
            const Speaker& seen = layouts[i].speakers[channel];
            EXPECT_EQ(seen.type, speakers[channel].type) << expected.name << " channel " << channel;
            EXPECT_EQ(seen.position.azimuth, speakers[channel].position.azimuth) << expected.name;
            EXPECT_EQ(seen.position.elevation, speakers[channel].position.elevation) << expected.name;
            EXPECT_EQ(seen.position.distance, speakers[channel].position.distance) << expected.name;
        }
    }
}

// Hand-copied cells, each with its reason to be looked at.
TEST_F(SupportedLayoutsTable, KeepsItsSettledOddities) {
    EXPECT_EQ(named("2.0 +/-30°").speakers[0].position.azimuth, -35.0f); // not the 30 of the name
    EXPECT_EQ(named("2.0 +/-30°").speakers[1].position.azimuth, 35.0f);
    EXPECT_EQ(named("5.1 Film").speakers[1].position.azimuth, 0.0f); // centre between the fronts
    EXPECT_EQ(named("5.1 Film").speakers[5].type, Speaker::Type::lowFrequency);
    EXPECT_EQ(named("5.1 ITU").speakers[3].type, Speaker::Type::lowFrequency);
    EXPECT_EQ(named("5.1 ITU Logic").speakers[2].position.azimuth, -110.0f); // surrounds before the centre
    EXPECT_EQ(named("7.1 SDDS").speakers[0].position.azimuth, -40.0f);
    EXPECT_EQ(named("7.1 SDDS").speakers[7].position.azimuth, 20.0f);
    EXPECT_EQ(named("7.1.4").speakers[4].position.azimuth, -135.0f); // backs before sides
    EXPECT_EQ(named("9.1.6").speakers[15].position.elevation, 45.0f);
    EXPECT_EQ(named("13.1").speakers[8].position.elevation, 90.0f); // the voice of God
    EXPECT_EQ(named("13.1").speakers[8].position.y, 1.5f);
}

TEST_F(SupportedLayoutsTable, DoesNotOfferLcrsButItsSpeakersInAnotherOrder) {
    EXPECT_EQ(named("LRCS").channelCount, 4u);
    try {
        table.get(selectorId("LCRS"));
        FAIL() << "LCRS is not in the table";
    } catch (const std::invalid_argument& error) {
        EXPECT_STREQ(error.what(), "layout not supported");
    }
}

TEST_F(SupportedLayoutsTable, RefusesAnIndexInPlaceOfAnIdentifier) {
    for (std::uint32_t index = 0; index < 32; ++index)
        EXPECT_THROW(table.get(index), std::invalid_argument);
}

TEST_F(SupportedLayoutsTable, IsFilledThroughTheFactorysConverter) { EXPECT_EQ(factory.convertersMade, 1); }

// Property: left and right are alike in every layout, so a mirrored mix sounds mirrored.
TEST_F(SupportedLayoutsTable, IsMirrorSymmetric) {
    const auto mirrored = [](float azimuth) { return azimuth == 180.0f ? 180.0f : -azimuth; };
    for (const Properties& layout : all()) {
        for (const Speaker& speaker : layout.speakers) {
            const auto sameAs = [&](float azimuth) {
                return std::ranges::count_if(layout.speakers, [&](const Speaker& other) {
                    return other.type == speaker.type && other.position.azimuth == azimuth &&
                           other.position.elevation == speaker.position.elevation;
                });
            };
            EXPECT_EQ(sameAs(speaker.position.azimuth), sameAs(mirrored(speaker.position.azimuth)))
                << layout.name << " at " << speaker.position.azimuth;
        }
    }
}

TEST_F(SupportedLayoutsTable, KeepsTheListedCartesianFormBesideTheAngles) {
    for (const Properties& layout : all()) {
        for (const Speaker& speaker : layout.speakers) {
            const auto& p = speaker.position;
            const double expected = speaker.type == Speaker::Type::lowFrequency ? 0.0 : 1.5;
            EXPECT_NEAR(std::hypot(p.x, p.y, p.z), expected, 1e-6) << layout.name; // float sines
        }
    }
}

TEST_F(SupportedLayoutsTable, IsReadWithoutAllocationOrLock) {
    const std::uint32_t id = selectorId("9.1.6");
    const test::RealtimeScope scope;
    const Properties& layout = table.get(id);
    EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
    EXPECT_EQ(layout.channelCount, 16u);
}

TEST(LayoutTable, IsTheSameMemoryAtEveryCall) {
    EXPECT_EQ(layoutTable().data(), layoutTable().data());
    EXPECT_EQ(layoutTable().size(), 32u);
}

TEST(SpeakerPropertiesConverter, AppendsBehindWhatIsThere) {
    std::vector<Properties> list(1);
    SpeakerPropertiesConverter converter(list);
    const SpeakerRow speakers[]{{10, 20, false}, {.lowFrequency = true}};
    converter.add({"abc", speakers});
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[1].id, 0xBF1678BAU);
    EXPECT_EQ(list[1].name, "abc");
    EXPECT_EQ(list[1].channelCount, 2u);
    EXPECT_EQ(list[1].speakers[0].position.azimuth, 10.0f);
    EXPECT_EQ(list[1].speakers[0].position.elevation, 20.0f);
    EXPECT_EQ(list[1].speakers[0].position.distance, 1.5f);
    EXPECT_EQ(list[1].speakers[1].type, Speaker::Type::lowFrequency);
    EXPECT_EQ(list[1].speakers[1].position.distance, 0.0f);
}

TEST_F(SupportedLayoutsTable, FallbackKeepsEveryListedIdentifier) {
    const SpeakerSetupFallback fallback(&table);
    for (const listed::Layout& layout : listed::layouts)
        EXPECT_EQ(fallback.fallback(layout.id), layout.id) << layout.name;
}

TEST_F(SupportedLayoutsTable, FallbackTurnsAnythingElseIntoStereo) {
    const SpeakerSetupFallback fallback(&table);
    EXPECT_EQ(fallback.fallback(0), 0xEDE88239U);
    EXPECT_EQ(fallback.fallback(selectorId("LCRS")), 0xEDE88239U);
    EXPECT_EQ(fallback.fallback(selectorId("Mix Room")), 0xEDE88239U);
}

// Expected values: the four rows of the rule, each with its nearest neighbours.
TEST_F(SupportedLayoutsTable, GetTheirGainCompensationByHeightAndCount) {
    EXPECT_EQ(gainCompensationDb(named("1.0")), 0.6f);
    EXPECT_EQ(gainCompensationDb(named("2.0 +/-0°")), -0.1f);
    EXPECT_EQ(gainCompensationDb(named("2.0 +/-30°")), 0.6f);
    EXPECT_EQ(gainCompensationDb(named("2.0 +/-45°")), 0.6f);
    EXPECT_EQ(gainCompensationDb(named("LRCS")), -9.4f);
    EXPECT_EQ(gainCompensationDb(named("5.1 ITU")), -9.4f);
    EXPECT_EQ(gainCompensationDb(named("7.1")), -9.4f);
    EXPECT_EQ(gainCompensationDb(named("5.0.2")), -15.1f);
    EXPECT_EQ(gainCompensationDb(named("8.0")), -15.1f);
    EXPECT_EQ(gainCompensationDb(named("9.1.6")), -15.1f);
}

// The rule looks at first and last speaker only when there are exactly two, and at heights only from three
// on.
TEST(GainCompensation, TestsItsConditionsInOrder) {
    const auto layoutOf = [](const std::vector<orvane::SpatialPosition>& positions) {
        Properties layout;
        for (const auto& position : positions)
            layout.speakers.push_back({position, Speaker::Type::loudspeaker});
        layout.channelCount = positions.size();
        return layout;
    };
    EXPECT_EQ(gainCompensationDb(layoutOf({{30, 0, 1.5f}, {30, 0, 1.5f}})), -0.1f);
    EXPECT_EQ(gainCompensationDb(layoutOf({{0, 0, 1.5f}, {0, 1, 1.5f}})), 0.6f);
    EXPECT_EQ(gainCompensationDb(layoutOf({{0, -1, 1.5f}, {0, 0, 1.5f}})), 0.6f);
    EXPECT_EQ(gainCompensationDb(layoutOf({{-30, 0, 1.5f}, {0, 0, 1.5f}, {0, 0, 1.5f}})), -9.4f);
    EXPECT_EQ(gainCompensationDb(layoutOf({{0, 0, 1.5f}, {0, 0, 1.5f}, {1, 0, 1.5f}})), -15.1f);
}

TEST(LayoutMenu, ShowsTheListedNamesUnderThreeHeaders) {
    const auto menu = layoutMenu();
    ASSERT_EQ(menu.size(), std::size(listed::layouts));
    for (std::size_t i = 0; i < menu.size(); ++i) {
        EXPECT_EQ(menu[i].name, listed::layouts[i].name);
        EXPECT_EQ(menu[i].name, layoutTable()[i].name);
        EXPECT_EQ(menu[i].shownAs, listed::layouts[i].shownAs);
        const std::string_view header = menu[i].name == "1.0"     ? "Mono/Stereo"
                                        : menu[i].name == "LRCS"  ? "Horizontal Plane"
                                        : menu[i].name == "5.0.2" ? "With Heights"
                                                                  : "";
        EXPECT_EQ(menu[i].sectionBefore, header) << menu[i].name;
    }
}

} // namespace
