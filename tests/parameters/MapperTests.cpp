// SPDX-License-Identifier: GPL-3.0-or-later
#include "CountingReloadListener.h"
#include "parameters/ParameterSet.h"
#include "parameters/core/AmbienceMapper.h"
#include "parameters/core/FocusMapper.h"
#include "parameters/core/MasterGainMapper.h"
#include "parameters/core/ParameterSet.h"
#include "parameters/core/Scene.h"
#include "parameters/core/SceneMapper.h"
#include "parameters/core/SelectorId.h"
#include "parameters/core/SelectorValue.h"
#include "parameters/core/SliderValue.h"
#include "parameters/core/SpeakerSetupMapper.h"
#include "support/RealtimeScope.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <stdexcept>
#include <string_view>
#include <thread>

namespace {

using namespace orvane::kestrum::core;
using Room = orvane::VirtualAcoustics::Type;

/// The six user values (head rotation has no mapper), the set and the mappers, as a processor holds them.
class Mappers : public ::testing::Test {
protected:
    void choose(std::string_view sceneName) { scene.setValue(selectorId(sceneName)); }

    /// What happens after an engine swap, in the same order.
    void reloadFinished() {
        focusMapper.update();
        ambienceMapper.update();
        masterGainMapper.update();
        sceneMapper.update();
    }

    SelectorValue speakerSetup{selectorId("2.0 +/-30°")};
    SelectorValue scene{selectorId("Mix Room")};
    internal::SliderValue<float> ambience{50.0f};
    internal::SliderValue<float> focus{0.0f};
    internal::SliderValue<float> masterGain{0.0f};
    ParameterSet set{std::make_unique<orvane::ParameterSet>()};
    test::CountingReloadListener reloads{set};

    SpeakerSetupMapper speakerSetupMapper{&speakerSetup, &set};
    SceneMapper sceneMapper{&scene, &set};
    MasterGainMapper masterGainMapper{&masterGain, &scene, &set};
    FocusMapper focusMapper{&focus, &scene, &set};
    AmbienceMapper ambienceMapper{&ambience, &scene, &set};
};

// Expected values: the "Mix Room" row.
TEST_F(Mappers, HaveWrittenTheSceneOnceTheyAreConstructedWithoutAskingForAReload) {
    EXPECT_EQ(set.getReflectionGainDb(), 3.0f);
    EXPECT_EQ(set.getReflectionLowPassFrequency(), 14000.0f);
    EXPECT_EQ(set.getReflectionHighPassFrequency(), 1140.0f);
    EXPECT_EQ(set.getReverbGainDb(), -12.0f);
    EXPECT_EQ(set.getReverbLowPassFrequency(), 12948.0f);
    EXPECT_EQ(set.getReverbHighPassFrequency(), 130.0f);
    EXPECT_EQ(set.getCeilingDistance(), 1.8f);
    EXPECT_EQ(set.getFrontDistance(), 8.0f);
    EXPECT_EQ(set.getBackDistance(), 11.0f);
    EXPECT_EQ(set.getRightDistance(), 10.5f);
    EXPECT_EQ(set.getLeftDistance(), 5.5f);
    EXPECT_EQ(set.getFloorDistance(), 1.6f);
    EXPECT_EQ(set.getReverbDecayPercent(), 90.0f);
    EXPECT_EQ(set.getDistance(), 3.5f);
    EXPECT_EQ(set.getOutputGainDb(), 4.5f);
    EXPECT_EQ(set.getClarity(), 0.65f);
    const auto snapshot = set.createReloadParameterSet();
    EXPECT_EQ(snapshot->roomId(), 15u);
    EXPECT_TRUE(snapshot->hasReverb());
    EXPECT_TRUE(snapshot->reflectionsActive());
    EXPECT_FALSE(snapshot->roomIsDynamic());
    EXPECT_EQ(reloads.count, 0);
}

TEST_F(Mappers, AskForOneReloadWhenTheLayoutChanges) {
    speakerSetup.setValue(selectorId("5.1 ITU"));
    EXPECT_EQ(reloads.count, 1);
    speakerSetup.setValue(selectorId("5.1 ITU"));
    EXPECT_EQ(reloads.count, 1);
    speakerSetupMapper.update();
    EXPECT_EQ(reloads.count, 1);
}

TEST_F(Mappers, AskForExactlyOneReloadWhenTheSceneChanges) {
    choose("Stadium"); // every structural value but reverb and reflections changes
    EXPECT_EQ(reloads.count, 1);
    choose("Analytic Dry"); // every structural value changes
    EXPECT_EQ(reloads.count, 2);
    choose("Cinema");
    EXPECT_EQ(reloads.count, 3);
    choose("Home Theater"); // no structural value changes: the reload brings the continuous ones
    EXPECT_EQ(reloads.count, 4);
    choose("Home Theater");
    EXPECT_EQ(reloads.count, 4);
}

TEST_F(Mappers, AskForNoReloadWhenASliderMoves) {
    focus.setValue(30.0f);
    ambience.setValue(20.0f);
    masterGain.setValue(-6.0f);
    EXPECT_EQ(reloads.count, 0);
}

TEST_F(Mappers, WriteASceneStructureAtOnceAndItsContinuousValuesAfterTheSwap) {
    choose("Stadium");
    const auto snapshot = set.createReloadParameterSet();
    EXPECT_EQ(snapshot->roomId(), 33u);
    EXPECT_TRUE(snapshot->roomIsDynamic());
    EXPECT_EQ(set.getReflectionLowPassFrequency(), 14000.0f) << "still the Mix Room's";
    EXPECT_EQ(set.getDistance(), 3.5f);
    EXPECT_EQ(set.getOutputGainDb(), 4.5f);

    reloadFinished();
    EXPECT_EQ(set.getReflectionGainDb(), -1.0f);
    EXPECT_EQ(set.getReflectionLowPassFrequency(), 5167.0f);
    EXPECT_EQ(set.getReflectionHighPassFrequency(), 310.0f);
    EXPECT_EQ(set.getReverbGainDb(), -10.0f);
    EXPECT_EQ(set.getReverbLowPassFrequency(), 9000.0f);
    EXPECT_EQ(set.getReverbHighPassFrequency(), 45.0f);
    EXPECT_EQ(set.getCeilingDistance(), 8.5f);
    EXPECT_EQ(set.getFrontDistance(), 10.8f);
    EXPECT_EQ(set.getBackDistance(), 30.0f);
    EXPECT_EQ(set.getRightDistance(), 21.4f);
    EXPECT_EQ(set.getLeftDistance(), 25.7f);
    EXPECT_EQ(set.getFloorDistance(), 1.8f);
    EXPECT_EQ(set.getReverbDecayPercent(), 95.0f);
    EXPECT_EQ(set.getDistance(), 15.0f);
    EXPECT_EQ(set.getOutputGainDb(), 14.8f);
    EXPECT_EQ(reloads.count, 1) << "the push after the swap must not ask for the next one";
}

TEST_F(Mappers, AnalyticDryGivesASnapshotWithNeitherReflectionsNorReverb) {
    choose("Analytic Dry");
    const auto snapshot = set.createReloadParameterSet();
    EXPECT_FALSE(snapshot->reflectionsActive());
    EXPECT_FALSE(snapshot->hasReverb());
    EXPECT_EQ(snapshot->roomId(), 36u);
}

// Expected values: 3 dB and 0.65 of clarity to either side, a straight line between.
TEST_F(Mappers, FocusMovesReflectionsAndClarityAroundTheScene) {
    EXPECT_EQ(set.getReflectionGainDb(), 3.0f);
    EXPECT_EQ(set.getClarity(), 0.65f);
    focus.setValue(100.0f);
    EXPECT_EQ(set.getReflectionGainDb(), 6.0f);
    EXPECT_EQ(set.getClarity(), 0.0f);
    focus.setValue(-100.0f);
    EXPECT_EQ(set.getReflectionGainDb(), 0.0f);
    EXPECT_FLOAT_EQ(set.getClarity(), 1.0f);
    focus.setValue(50.0f);
    EXPECT_FLOAT_EQ(set.getReflectionGainDb(), 4.5f);
    EXPECT_FLOAT_EQ(set.getClarity(), 0.325f);
    focus.setValue(-50.0f);
    EXPECT_FLOAT_EQ(set.getReflectionGainDb(), 1.5f);
    EXPECT_FLOAT_EQ(set.getClarity(), 0.825f);
}

TEST_F(Mappers, FocusBeyondItsRangeIsItsLimit) {
    for (const float f : {std::nextafter(100.0f, 200.0f), 1000.0f}) {
        focus.setValue(f);
        EXPECT_EQ(set.getReflectionGainDb(), 6.0f);
        EXPECT_EQ(set.getClarity(), 0.0f);
        focus.setValue(-f);
        EXPECT_EQ(set.getReflectionGainDb(), 0.0f);
        EXPECT_EQ(set.getClarity(), 1.0f);
    }
}

// Expected values: worked by hand from the "Mix Room" row.
TEST_F(Mappers, AmbienceMovesTheReverbAroundTheScene) {
    EXPECT_EQ(set.getReverbGainDb(), -12.0f);
    EXPECT_EQ(set.getReverbLowPassFrequency(), 12948.0f);
    EXPECT_EQ(set.getReverbHighPassFrequency(), 130.0f);
    ambience.setValue(0.0f);
    EXPECT_EQ(set.getReverbGainDb(), -18.0f);
    EXPECT_FLOAT_EQ(set.getReverbLowPassFrequency(), 12948.0f * 0.7f);
    EXPECT_EQ(set.getReverbHighPassFrequency(), 260.0f);
    ambience.setValue(100.0f);
    EXPECT_EQ(set.getReverbGainDb(), -6.5f);
    EXPECT_FLOAT_EQ(set.getReverbLowPassFrequency(), 16832.4f);
    EXPECT_EQ(set.getReverbHighPassFrequency(), 65.0f);
    ambience.setValue(25.0f);
    EXPECT_EQ(set.getReverbGainDb(), -15.0f);
    EXPECT_FLOAT_EQ(set.getReverbLowPassFrequency(), 12948.0f * 0.85f);
    EXPECT_EQ(set.getReverbHighPassFrequency(), 195.0f);
    ambience.setValue(75.0f);
    EXPECT_EQ(set.getReverbGainDb(), -9.25f);
    EXPECT_FLOAT_EQ(set.getReverbLowPassFrequency(), 12948.0f * 1.15f);
    EXPECT_EQ(set.getReverbHighPassFrequency(), 97.5f);
    ambience.setValue(50.0f);
    EXPECT_EQ(set.getReverbGainDb(), -12.0f);
}

TEST_F(Mappers, AmbienceLeavesTheDecayToTheScene) {
    for (const float value : {0.0f, 50.0f, 100.0f}) {
        ambience.setValue(value);
        EXPECT_EQ(set.getReverbDecayPercent(), 90.0f) << value;
    }
}

TEST_F(Mappers, AmbienceStopsAtTwentyKilohertz) {
    choose("Kitchen");
    reloadFinished();
    EXPECT_EQ(set.getReverbLowPassFrequency(), 16000.0f);
    ambience.setValue(100.0f);
    EXPECT_EQ(set.getReverbLowPassFrequency(), 20000.0f); // 20800 otherwise
    EXPECT_EQ(set.getReverbGainDb(), 8.5f);
    EXPECT_EQ(set.getReverbHighPassFrequency(), 55.5f);
}

TEST_F(Mappers, MasterGainStandsOnTopOfTheScenes) {
    EXPECT_EQ(set.getOutputGainDb(), 4.5f);
    masterGain.setValue(-96.0f);
    EXPECT_EQ(set.getOutputGainDb(), -91.5f);
    masterGain.setValue(24.0f);
    EXPECT_EQ(set.getOutputGainDb(), 28.5f);
}

// A slider that moves between a Scene's choice and its swap already takes the new Scene for its base.
TEST_F(Mappers, SlidersUseTheSceneOfTheMoment) {
    choose("Van");
    masterGain.setValue(1.0f);
    EXPECT_FLOAT_EQ(set.getOutputGainDb(), -0.2f);
    EXPECT_EQ(set.getReverbGainDb(), -12.0f) << "ambience has not moved";
}

TEST_F(Mappers, LetAnUnknownSceneEscapeAsAnException) {
    EXPECT_THROW(scene.setValue(0), std::out_of_range);
    EXPECT_THROW(reloadFinished(), std::out_of_range);
    choose("Kitchen");
    EXPECT_NO_THROW(reloadFinished());
}

TEST(DestroyedMappers, NoLongerListen) {
    SelectorValue setup{selectorId("1.0")};
    SelectorValue scene{selectorId("Mix Room")};
    internal::SliderValue<float> ambience{50.0f};
    internal::SliderValue<float> focus{0.0f};
    internal::SliderValue<float> masterGain{0.0f};
    ParameterSet set{std::make_unique<orvane::ParameterSet>()};
    const test::CountingReloadListener reloads{set};
    {
        const SpeakerSetupMapper a(&setup, &set);
        const SceneMapper b(&scene, &set);
        const MasterGainMapper c(&masterGain, &scene, &set);
        const FocusMapper d(&focus, &scene, &set);
        const AmbienceMapper e(&ambience, &scene, &set);
    }
    setup.setValue(selectorId("2.0 +/-30°"));
    scene.setValue(selectorId("Kitchen"));
    ambience.setValue(0.0f);
    focus.setValue(100.0f);
    masterGain.setValue(10.0f);
    EXPECT_EQ(reloads.count, 0);
    EXPECT_EQ(set.getOutputGainDb(), 4.5f);
    EXPECT_EQ(set.getReverbGainDb(), -12.0f);
    EXPECT_EQ(set.getReflectionGainDb(), 3.0f);
}

// The push after an engine swap runs on the audio thread.
TEST_F(Mappers, UpdateWithoutAllocationOrLockInEveryScene) {
    for (const std::uint32_t id : Scene::identifiers()) {
        scene.setValue(id);
        ambience.setValue(100.0f);
        focus.setValue(-30.0f);
        const test::RealtimeScope scope;
        speakerSetupMapper.update();
        reloadFinished();
        EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
    }
}

// Under ThreadSanitizer this is the proof that nothing is torn or raced; elsewhere that every value that the
// audio thread sees is one that somebody wrote.
TEST_F(Mappers, LetOneThreadMoveValuesWhileAnotherPushesAndReadsThem) {
    std::atomic<bool> running{true};
    std::atomic<long> rounds{0};
    long strangers = 0;
    std::thread audio([&] {
        while (running) {
            reloadFinished();
            const float gain = set.getOutputGainDb();
            const bool known = std::ranges::any_of(Scene::presets(), [gain](const Scene::Preset& preset) {
                return gain == preset.masterGainDb || gain == 10.0f + preset.masterGainDb;
            });
            strangers += known ? 0 : 1;
            const float distance = set.getDistance();
            strangers += distance >= 2.0f && distance <= 18.9f ? 0 : 1;
            rounds.fetch_add(1);
        }
    });
    std::size_t step = 0;
    while (rounds < 200 || step < 2000) {
        scene.setValue(Scene::identifiers()[step % Scene::count]);
        masterGain.setValue(step % 2 == 0 ? 10.0f : 0.0f);
        focus.setValue(static_cast<float>(step % 200) - 100.0f);
        ambience.setValue(static_cast<float>(step % 100));
        speakerSetup.setValue(step % 2 == 0 ? selectorId("1.0") : selectorId("Quad"));
        EXPECT_LE(set.createReloadParameterSet()->roomId(), 47u);
        ++step;
    }
    running = false;
    audio.join();
    EXPECT_EQ(strangers, 0);
}

} // namespace
