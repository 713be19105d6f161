// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/Scene.h"

#include "ListedTables.h"
#include "parameters/core/MenuPresentation.h"
#include "parameters/core/SceneFallback.h"
#include "parameters/core/SelectorId.h"
#include "support/RealtimeScope.h"

#include <gmock/gmock.h>

#include <array>
#include <stdexcept>

namespace {

using namespace orvane::kestrum::core;
using Room = orvane::VirtualAcoustics::Type;

// Expected values: the list as people read it.
TEST(Scenes, AreTheListedOnesInOrder) {
    ASSERT_EQ(std::size(listed::scenes), Scene::count);
    for (std::size_t i = 0; i < Scene::count; ++i) {
        const listed::Scene& expected = listed::scenes[i];
        const Scene::Preset& preset = Scene::presets()[i];
        EXPECT_EQ(preset.name, expected.name);
        EXPECT_EQ(Scene::identifiers()[i], expected.id) << expected.name;
        EXPECT_EQ(&Scene::get(expected.id), &preset) << expected.name;
        EXPECT_EQ(preset.roomType, Room{expected.room}) << expected.name;
        EXPECT_EQ(preset.reflectionsOn, expected.reflectionsOn) << expected.name;
        EXPECT_EQ(preset.reverbOn, expected.reverbOn) << expected.name;
        EXPECT_EQ(preset.customRoom, expected.customRoom) << expected.name;
        const std::array values{preset.reflectionGainDb,
                                preset.reflectionLowPassFrequency,
                                preset.reflectionHighPassFrequency,
                                preset.reverbGainDb,
                                preset.reverbLowPassFrequency,
                                preset.reverbHighPassFrequency,
                                preset.ceilingDistance,
                                preset.frontDistance,
                                preset.backDistance,
                                preset.rightDistance,
                                preset.leftDistance,
                                preset.floorDistance,
                                preset.reverbDecayPercent,
                                preset.sourceDistance,
                                preset.masterGainDb};
        EXPECT_EQ(values, expected.values) << expected.name;
    }
}

TEST(Scenes, OnlyTheStadiumHasWallsOfItsOwn) {
    for (const Scene::Preset& preset : Scene::presets())
        EXPECT_EQ(preset.customRoom, preset.name == "Stadium");
}

TEST(Scenes, AreFoundUnderTheHashOfTheirNames) {
    EXPECT_EQ(selectorId("Mix Room"), 0x1AC2A1C3U);
    EXPECT_EQ(Scene::get(selectorId("Kitchen")).reverbHighPassFrequency, 111.0f);
}

TEST(Scenes, RefuseAnUnknownIdentifierWithItsDecimalNumber) {
    for (const auto& [id, text] :
         {std::pair{0U, "no such id: 0"}, std::pair{4294967295U, "no such id: 4294967295"}}) {
        try {
            Scene::get(id);
            FAIL() << id << " is no Scene";
        } catch (const std::out_of_range& error) {
            EXPECT_STREQ(error.what(), text);
        }
    }
}

TEST(Scenes, AreLookedUpWithoutAllocationOrLock) {
    const auto ids = Scene::identifiers(); // the table of identifiers exists from here on
    float sum = 0;
    const test::RealtimeScope scope;
    for (const std::uint32_t id : ids)
        sum += Scene::get(id).sourceDistance;
    EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
    EXPECT_GT(sum, 0.0f);
}

TEST(SceneFallback, KeepsEveryListedIdentifierAndTurnsAnythingElseIntoTheMixRoom) {
    const SceneFallback fallback;
    for (const listed::Scene& scene : listed::scenes)
        EXPECT_EQ(fallback.fallback(scene.id), scene.id) << scene.name;
    EXPECT_EQ(fallback.fallback(0), 0x1AC2A1C3U);
    EXPECT_EQ(fallback.fallback(0xEDE88239U), 0x1AC2A1C3U);
}

TEST(SceneMenu, ShowsTheListedNamesUnderTwoHeaders) {
    const auto menu = sceneMenu();
    ASSERT_EQ(menu.size(), Scene::count);
    for (std::size_t i = 0; i < menu.size(); ++i) {
        EXPECT_EQ(menu[i].name, Scene::presets()[i].name);
        EXPECT_EQ(menu[i].shownAs, listed::scenes[i].shownAs);
        const std::string_view header = menu[i].name == "Mix Room"     ? "Mix"
                                        : menu[i].name == "Live Venue" ? "Check"
                                                                       : "";
        EXPECT_EQ(menu[i].sectionBefore, header) << menu[i].name;
    }
}

} // namespace
