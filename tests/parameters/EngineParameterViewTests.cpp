// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/EngineParameterView.h"

#include "parameters/ParameterSet.h"
#include "parameters/core/ParameterSet.h"
#include "support/RealtimeScope.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <memory>

namespace {

namespace core = orvane::kestrum::core;

constexpr std::size_t valueCount = 27;

/// Everything that an engine's parts read in a block but the head's rotation.
std::array<float, valueCount> valuesOf(const core::IParameterSet& set) {
    return {set.getAzimuth(),
            set.getElevation(),
            set.getDirectGainDb(),
            set.getSpatialValue4(),
            set.getAttenuationValue(),
            set.getReflectionLowPassFrequency(),
            set.getDistanceLevel(),
            set.getFarFade(),
            set.getAttenuationDb(),
            set.getAzimuthExponent(),
            set.getFloorLevelDb(),
            set.getDistance(),
            set.getDistanceScale(),
            set.getReflectionGainDb(),
            set.getCeilingDistance(),
            set.getFloorDistance(),
            set.getRightDistance(),
            set.getLeftDistance(),
            set.getFrontDistance(),
            set.getBackDistance(),
            set.getReflectionHighPassFrequency(),
            set.getClarity(),
            set.getReverbGainDb(),
            set.getReverbLowPassFrequency(),
            set.getReverbDecayPercent(),
            set.getReverbHighPassFrequency(),
            set.getOutputGainDb()};
}

/// Gives every writable value one of its own, counted up from `first`; the distance stays where the level and
/// the fade of it move.
void write(core::IParameterSet& set, float first) {
    float value = first;
    set.setAzimuth(value++, false);
    set.setElevation(value++, false);
    set.setDirectGainDb(value++, false);
    set.setSpatialValue4(value++, false);
    set.setAttenuationValue(value++, false);
    set.setReflectionLowPassFrequency(value++, false);
    set.setAzimuthExponent(value++, false);
    set.setFloorLevelDb(value++, false);
    set.setDistance(value++, false);
    set.setDistanceScale(1.0f + first / 1000.0f, false);
    set.setReflectionGainDb(value++, false);
    set.setCeilingDistance(value++, false);
    set.setFloorDistance(value++, false);
    set.setRightDistance(value++, false);
    set.setLeftDistance(value++, false);
    set.setFrontDistance(value++, false);
    set.setBackDistance(value++, false);
    set.setReflectionHighPassFrequency(value++, false);
    set.setClarity(value++, false);
    set.setReverbGainDb(value++, false);
    set.setReverbLowPassFrequency(value++, false);
    set.setReverbDecayPercent(value++, false);
    set.setReverbHighPassFrequency(value++, false);
    set.setOutputGainDb(value++, false);
}

/// A set whose head turns by a number.
class TurningSet final : public core::ParameterSet {
public:
    TurningSet() : core::ParameterSet(std::make_unique<orvane::ParameterSet>()) {}
    orvane::HeadRotationMatrix getHeadRotation() const noexcept override { return rotation; }

    orvane::HeadRotationMatrix rotation = orvane::identityRotation;
};

TEST(EngineParameterView, FollowsTheSetUntilItIsFrozen) {
    TurningSet set;
    const core::EngineParameterView view(&set);
    for (const float first : {1.0f, 5.0f}) {
        write(set, first);
        EXPECT_EQ(valuesOf(view), valuesOf(set));
    }
}

// Property: every single value differs between the two writings, derived ones included, and none of them moves.
TEST(EngineParameterView, KeepsEveryValueFromTheFreezeOn) {
    TurningSet set;
    core::EngineParameterView view(&set);
    write(set, 1.0f);
    const auto before = valuesOf(set);
    view.freeze();
    write(set, 5.0f);
    const auto after = valuesOf(set);
    for (std::size_t index = 0; index < valueCount; ++index)
        ASSERT_NE(before[index], after[index]) << "value " << index << " would show nothing";
    EXPECT_EQ(valuesOf(view), before);
}

TEST(EngineParameterView, ASecondFreezeTakesNothingOver) {
    TurningSet set;
    core::EngineParameterView view(&set);
    write(set, 1.0f);
    const auto before = valuesOf(set);
    view.freeze();
    write(set, 5.0f);
    view.freeze();
    EXPECT_EQ(valuesOf(view), before);
}

TEST(EngineParameterView, FollowsTheHeadAlsoWhenFrozen) {
    TurningSet set;
    core::EngineParameterView view(&set);
    view.freeze();
    set.rotation = {0, 0, 1, 0, 0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 0, 1};
    EXPECT_EQ(view.getHeadRotation(), set.rotation);
}

/// What an engine is built with has to be what is asked for now.
TEST(EngineParameterView, TakesItsStructureAndItsListenersFromTheSet) {
    TurningSet set;
    core::EngineParameterView view(&set);
    view.freeze();
    set.setRoomType(orvane::VirtualAcoustics::Type{33}, false);
    EXPECT_EQ(view.createReloadParameterSet()->roomId(), 33u);
    view.setClarity(0.25f, false);
    view.setReflectionHighPassFrequency(100.0f, false);
    view.setReverbHighPassFrequency(200.0f, false);
    EXPECT_EQ(set.getClarity(), 0.25f);
    EXPECT_EQ(set.getReflectionHighPassFrequency(), 100.0f);
    EXPECT_EQ(set.getReverbHighPassFrequency(), 200.0f);
}

TEST(EngineParameterView, FreezesAndReadsWithoutAllocatingOrLocking) {
    TurningSet set;
    core::EngineParameterView view(&set);
    const test::RealtimeScope scope;
    static_cast<void>(valuesOf(view));
    view.freeze();
    static_cast<void>(valuesOf(view));
    EXPECT_EQ(scope.violations().total(), 0u) << scope.violations();
}

} // namespace
