// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/ParameterSet.h"

#include "CountingReloadListener.h"
#include "parameters/ParameterSet.h"
#include "parameters/core/SpeakerParameterSetView.h"
#include "support/RealtimeScope.h"

#include <gtest/gtest.h>

#include <string_view>

namespace {

namespace core = orvane::kestrum::core;
using orvane::SpatialPosition;

/// A set around a general one that stays reachable.
struct Wrapped {
    Wrapped() : Wrapped(std::make_unique<orvane::ParameterSet>()) {}
    explicit Wrapped(std::unique_ptr<orvane::ParameterSet> owned)
        : inner(owned.get()), set(std::move(owned)) {}

    orvane::ParameterSet* inner;
    core::ParameterSet set;
};

struct ForwardedValue {
    const char* name;
    void (*set)(orvane::IParameterSet&, float value);
    float (*get)(const orvane::IParameterSet&);
};

void PrintTo(const ForwardedValue& value, std::ostream* stream) { *stream << value.name; }

#define FORWARDED(name)                                                                                      \
    ForwardedValue {                                                                                         \
#        name, [](orvane::IParameterSet & set,                                                               \
                  float value) { set.set##name(value, false); }, [](const orvane::IParameterSet&             \
                                                                        set) { return set.get##name(); }     \
    }

const ForwardedValue forwardedValues[]{FORWARDED(Azimuth),
                                       FORWARDED(Elevation),
                                       FORWARDED(Distance),
                                       FORWARDED(DistanceScale),
                                       FORWARDED(AttenuationValue),
                                       FORWARDED(InputLimit),
                                       FORWARDED(FloorLevelDb),
                                       FORWARDED(DirectGainDb),
                                       FORWARDED(AzimuthExponent),
                                       FORWARDED(SpatialValue4),
                                       FORWARDED(ReverbDecayPercent),
                                       FORWARDED(ReverbGainDb),
                                       FORWARDED(ReverbLowPassFrequency),
                                       FORWARDED(ReflectionGainDb),
                                       FORWARDED(ReflectionLowPassFrequency),
                                       FORWARDED(CeilingDistance),
                                       FORWARDED(FloorDistance),
                                       FORWARDED(RightDistance),
                                       FORWARDED(LeftDistance),
                                       FORWARDED(FrontDistance),
                                       FORWARDED(BackDistance),
                                       FORWARDED(OutputGainDb)};
#undef FORWARDED

class ForwardedValues : public ::testing::TestWithParam<ForwardedValue> {};

// Property: the decorator and what it wraps are one value, written on either side.
TEST_P(ForwardedValues, AreThoseOfTheWrappedSet) {
    Wrapped wrapped;
    GetParam().set(wrapped.set, 3.25f);
    EXPECT_EQ(GetParam().get(*wrapped.inner), 3.25f);
    GetParam().set(*wrapped.inner, -2.5f);
    EXPECT_EQ(GetParam().get(wrapped.set), -2.5f);
}
INSTANTIATE_TEST_SUITE_P(OfTheDecorator, ForwardedValues, ::testing::ValuesIn(forwardedValues));

TEST(CoreParameterSet, ForwardsFlagsAndStructure) {
    Wrapped wrapped;
    wrapped.set.setEnabled(true, false);
    wrapped.set.setFlag1(true, false);
    wrapped.set.setFlag2(true, false);
    EXPECT_TRUE(wrapped.inner->getEnabled());
    EXPECT_TRUE(wrapped.inner->getFlag1());
    EXPECT_TRUE(wrapped.set.getFlag1());
    EXPECT_TRUE(wrapped.inner->getFlag2());
    EXPECT_TRUE(wrapped.set.getFlag2());
    EXPECT_EQ(wrapped.set.getOutputScale(), 1.0f);

    wrapped.set.setReflectionsOn(false, false);
    wrapped.set.setReverbOn(false, false);
    wrapped.set.setCustomRoom(true, false);
    wrapped.set.setWatchSource(true, false);
    wrapped.set.setRoomType(orvane::VirtualAcoustics::Type{33}, false);
    wrapped.set.setOutputFormat(orvane::IOutputFormat::Format::plainTwoChannel, false);
    const auto snapshot = wrapped.set.createReloadParameterSet();
    EXPECT_FALSE(snapshot->reflectionsActive());
    EXPECT_FALSE(snapshot->hasReverb());
    EXPECT_TRUE(snapshot->roomIsDynamic());
    EXPECT_TRUE(snapshot->watchSource());
    EXPECT_EQ(snapshot->roomId(), 33u);
    EXPECT_TRUE(snapshot->getOutputFormat()->isPlainTwoChannel());
}

TEST(CoreParameterSet, ForwardsTheDerivedValues) {
    Wrapped wrapped;
    wrapped.set.setDistance(20.0f, false);
    wrapped.set.setAttenuationValue(10.0f, false);
    EXPECT_EQ(wrapped.set.getDistanceLevel(), wrapped.inner->getDistanceLevel());
    EXPECT_FLOAT_EQ(wrapped.set.getFarFade(), 0.5f);
    EXPECT_FLOAT_EQ(wrapped.set.getAttenuationDb(), 2.4f);
    EXPECT_EQ(wrapped.set.getHeadRotation(), orvane::identityRotation);
}

TEST(CoreParameterSet, HoldsItsOwnThreeValuesFromZeroAndFiresNoReloadForThem) {
    Wrapped wrapped;
    const test::CountingReloadListener listener(wrapped.set);
    const core::ISpeakerParameterSetView& speakers = wrapped.set;
    const core::IReverbParameterView& reverb = wrapped.set;
    EXPECT_EQ(speakers.getReflectionHighPassFrequency(), 0.0f);
    EXPECT_EQ(speakers.getClarity(), 0.0f);
    EXPECT_EQ(reverb.getReverbHighPassFrequency(), 0.0f);
    wrapped.set.setReflectionHighPassFrequency(1140.0f, true);
    wrapped.set.setClarity(0.65f, true);
    wrapped.set.setReverbHighPassFrequency(130.0f, true);
    EXPECT_EQ(speakers.getReflectionHighPassFrequency(), 1140.0f);
    EXPECT_EQ(speakers.getClarity(), 0.65f);
    EXPECT_EQ(reverb.getReverbHighPassFrequency(), 130.0f);
    EXPECT_EQ(listener.count, 0);
}

TEST(CoreParameterSet, ReloadsOncePerRequestThoughNoValueHasChanged) {
    Wrapped wrapped;
    const test::CountingReloadListener outside(wrapped.set);
    const test::CountingReloadListener inside(*wrapped.inner);
    wrapped.set.reload();
    EXPECT_EQ(outside.count, 1);
    EXPECT_EQ(inside.count, 1);
    wrapped.set.setReverbOn(false, false);
    wrapped.set.reload();
    EXPECT_EQ(outside.count, 2);
    wrapped.set.setRoomType(orvane::VirtualAcoustics::Type{1}, true);
    EXPECT_EQ(outside.count, 3);
}

TEST(CoreParameterSet, ForgetsAReloadListenerThatLeaves) {
    Wrapped wrapped;
    struct Counter final : orvane::IReloadListener {
        void reloadRequested() override { ++count; }
        int count = 0;
    } counter;
    wrapped.set.addReloadListener(&counter);
    wrapped.set.notifyReloadListeners();
    wrapped.set.removeReloadListener(&counter);
    wrapped.set.notifyReloadListeners();
    EXPECT_EQ(counter.count, 1);
}

TEST(SpeakerParameterSetView, ReportsItsOwnPlaceWhateverTheSetHolds) {
    Wrapped wrapped;
    const core::SpeakerParameterSetView view(SpatialPosition(30.0f, -110.0f, 1.5f), &wrapped.set);
    wrapped.set.setAzimuth(77.0f, false);
    wrapped.set.setElevation(-5.0f, false);
    wrapped.set.setDistance(9.0f, false);
    EXPECT_EQ(view.getAzimuth(), -110.0f);
    EXPECT_EQ(view.getElevation(), 30.0f);
    EXPECT_EQ(view.getDistance(), 1.5f);
}

TEST(SpeakerParameterSetView, KeepsACopyOfThePosition) {
    Wrapped wrapped;
    SpatialPosition position(0.0f, 45.0f, 1.5f);
    const core::SpeakerParameterSetView view(position, &wrapped.set);
    position = SpatialPosition(10.0f, 20.0f, 3.0f);
    EXPECT_EQ(view.getAzimuth(), 45.0f);
    EXPECT_EQ(view.getDistance(), 1.5f);
}

// Deliberate oddity: the level law uses the set's distance, not the loudspeaker's own 1.5 metres.
TEST(SpeakerParameterSetView, TakesTheDistanceLawFromTheSet) {
    Wrapped wrapped;
    const core::SpeakerParameterSetView view(SpatialPosition(0, 0, 1.5f), &wrapped.set);
    wrapped.set.setDistance(20.0f, false);
    EXPECT_FLOAT_EQ(view.getFarFade(), 0.5f);
    EXPECT_EQ(view.getDistanceLevel(), wrapped.inner->getDistanceLevel());
}

// Property: all other operations follow the set, each its own value (all values differ).
TEST(SpeakerParameterSetView, ForwardsEverythingElse) {
    Wrapped wrapped;
    core::ParameterSet& set = wrapped.set;
    const core::SpeakerParameterSetView view(SpatialPosition(0, 0, 1.5f), &set);
    set.setDirectGainDb(1, false);
    set.setSpatialValue4(2, false);
    set.setAttenuationValue(3, false);
    set.setReflectionLowPassFrequency(4, false);
    set.setAzimuthExponent(5, false);
    set.setFloorLevelDb(6, false);
    set.setDistanceScale(7, false);
    set.setReflectionGainDb(8, false);
    set.setCeilingDistance(9, false);
    set.setFloorDistance(10, false);
    set.setRightDistance(11, false);
    set.setLeftDistance(12, false);
    set.setFrontDistance(13, false);
    set.setBackDistance(14, false);
    set.setReflectionHighPassFrequency(15, false);
    set.setClarity(16, false);

    const test::RealtimeScope scope;
    const float seen[]{view.getDirectGainDb(),
                       view.getSpatialValue4(),
                       view.getAttenuationValue(),
                       view.getReflectionLowPassFrequency(),
                       view.getAzimuthExponent(),
                       view.getFloorLevelDb(),
                       view.getDistanceScale(),
                       view.getReflectionGainDb(),
                       view.getCeilingDistance(),
                       view.getFloorDistance(),
                       view.getRightDistance(),
                       view.getLeftDistance(),
                       view.getFrontDistance(),
                       view.getBackDistance(),
                       view.getReflectionHighPassFrequency(),
                       view.getClarity()};
    const float attenuation = view.getAttenuationDb();
    const auto rotation = view.getHeadRotation();
    EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
    for (std::size_t i = 0; i < std::size(seen); ++i)
        EXPECT_EQ(seen[i], static_cast<float>(i + 1));
    EXPECT_FLOAT_EQ(attenuation, 0.72f);
    EXPECT_EQ(rotation, orvane::identityRotation);
}

} // namespace
