// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/ParameterSet.h"

#include "CountingReloadListener.h"
#include "support/RealtimeScope.h"

#include <gmock/gmock.h>

#include <cmath>
#include <string_view>
#include <vector>

namespace {

using orvane::IOutputFormat;
using orvane::IParameterSet;
using orvane::ParameterSet;
using orvane::VirtualAcoustics;
using ::testing::ElementsAre;
using Room = VirtualAcoustics::Type;

// Expected values: hand-copied from the list of defaults.
TEST(ParameterSet, StartsWithTheListedDefaults) {
    const ParameterSet set;
    EXPECT_FALSE(set.getEnabled());
    EXPECT_EQ(set.getGeneralValue1(), 0.0f);
    EXPECT_EQ(set.getGeneralValue2(), 0.0f);
    EXPECT_EQ(set.getGeneralValue3(), 3.0f);
    EXPECT_EQ(set.getAzimuth(), 0.0f);
    EXPECT_EQ(set.getElevation(), 0.0f);
    EXPECT_EQ(set.getDistance(), 3.0f);
    EXPECT_EQ(set.getFloorLevelDb(), -96.0f);
    EXPECT_EQ(set.getDirectGainDb(), 0.0f);
    EXPECT_EQ(set.getAzimuthExponent(), 1.0f);
    EXPECT_EQ(set.getDistanceScale(), 1.0f);
    EXPECT_EQ(set.getAttenuationValue(), 0.0f);
    EXPECT_EQ(set.getSpatialValue4(), 0.0f);
    EXPECT_EQ(set.getReverbDecayPercent(), 100.0f);
    EXPECT_EQ(set.getReverbGainDb(), 0.0f);
    EXPECT_EQ(set.getReverbLowPassFrequency(), 20000.0f);
    EXPECT_EQ(set.getReflectionGainDb(), 0.0f);
    EXPECT_EQ(set.getReflectionLowPassFrequency(), 20000.0f);
    EXPECT_EQ(set.getCeilingDistance(), 5.5f);
    EXPECT_EQ(set.getFloorDistance(), 1.8f);
    EXPECT_EQ(set.getRightDistance(), 11.0f);
    EXPECT_EQ(set.getLeftDistance(), 10.5f);
    EXPECT_EQ(set.getFrontDistance(), 8.5f);
    EXPECT_EQ(set.getBackDistance(), 8.0f);
    EXPECT_FALSE(set.getFlag1());
    EXPECT_FALSE(set.getFlag2());
    EXPECT_EQ(set.getInputLimit(), -1.0f);
    EXPECT_EQ(set.getOutputGainDb(), 0.0f);
    EXPECT_EQ(set.getOutputScale(), 1.0f);
    EXPECT_EQ(set.getHeadRotation(), orvane::identityRotation);

    const auto snapshot = set.createReloadParameterSet();
    EXPECT_TRUE(snapshot->hasReverb());
    EXPECT_TRUE(snapshot->reflectionsActive());
    EXPECT_FALSE(snapshot->watchSource());
    EXPECT_FALSE(snapshot->roomIsDynamic());
    EXPECT_EQ(snapshot->roomId(), 5u);
    EXPECT_TRUE(snapshot->getOutputFormat()->isBinaural());
    EXPECT_EQ(snapshot->getOutputFormat()->channelCount(), 2u);
}

struct FloatValue {
    const char* name;
    void (*set)(IParameterSet&, float value, bool notify);
    float (*get)(const IParameterSet&);
};

void PrintTo(const FloatValue& value, std::ostream* stream) { *stream << value.name; }

#define FLOAT_VALUE(name)                                                                                    \
    FloatValue {                                                                                             \
#        name, [](IParameterSet & set, float value,                                                          \
                  bool notify) { set.set##name(value, notify); }, [](const IParameterSet&                    \
                                                                         set) { return set.get##name(); }    \
    }

const FloatValue continuousValues[]{FLOAT_VALUE(Azimuth),
                                    FLOAT_VALUE(Elevation),
                                    FLOAT_VALUE(Distance),
                                    FLOAT_VALUE(DistanceScale),
                                    FLOAT_VALUE(AttenuationValue),
                                    FLOAT_VALUE(InputLimit),
                                    FLOAT_VALUE(FloorLevelDb),
                                    FLOAT_VALUE(DirectGainDb),
                                    FLOAT_VALUE(AzimuthExponent),
                                    FLOAT_VALUE(SpatialValue4),
                                    FLOAT_VALUE(ReverbDecayPercent),
                                    FLOAT_VALUE(ReverbGainDb),
                                    FLOAT_VALUE(ReverbLowPassFrequency),
                                    FLOAT_VALUE(ReflectionGainDb),
                                    FLOAT_VALUE(ReflectionLowPassFrequency),
                                    FLOAT_VALUE(CeilingDistance),
                                    FLOAT_VALUE(FloorDistance),
                                    FLOAT_VALUE(RightDistance),
                                    FLOAT_VALUE(LeftDistance),
                                    FLOAT_VALUE(FrontDistance),
                                    FLOAT_VALUE(BackDistance),
                                    FLOAT_VALUE(OutputGainDb)};
#undef FLOAT_VALUE

class ContinuousValues : public ::testing::TestWithParam<FloatValue> {};

// Property: a value lands in its own parameter, in no other one, and asks for no new engine.
TEST_P(ContinuousValues, AreStoredApartFromEachOtherAndFireNoReload) {
    ParameterSet concrete;
    IParameterSet& set = concrete;
    const test::CountingReloadListener listener(set);
    std::vector<float> before;
    for (const FloatValue& value : continuousValues)
        before.push_back(value.get(set));

    GetParam().set(set, -17.25f, true);

    for (std::size_t i = 0; i < before.size(); ++i) {
        const FloatValue& value = continuousValues[i];
        const bool changed = std::string_view(value.name) == GetParam().name;
        EXPECT_EQ(value.get(set), changed ? -17.25f : before[i]) << value.name;
    }
    EXPECT_EQ(listener.count, 0);
}
INSTANTIATE_TEST_SUITE_P(OfTheSet, ContinuousValues, ::testing::ValuesIn(continuousValues));

TEST(ParameterSet, StoresItsFlagsWithoutAReload) {
    ParameterSet set;
    const test::CountingReloadListener listener(set);
    set.setEnabled(true, true);
    set.setFlag1(true, true);
    EXPECT_FALSE(set.getFlag2());
    set.setFlag2(true, true);
    EXPECT_TRUE(set.getEnabled());
    EXPECT_TRUE(set.getFlag1());
    EXPECT_TRUE(set.getFlag2());
    EXPECT_EQ(listener.count, 0);
}

struct StructuralChange {
    const char* name;
    void (*apply)(IParameterSet&, bool notify);
};

void PrintTo(const StructuralChange& change, std::ostream* stream) { *stream << change.name; }

class StructuralChanges : public ::testing::TestWithParam<StructuralChange> {};

TEST_P(StructuralChanges, FireOneReloadWhenTheyAreNotSilentAndChangeSomething) {
    ParameterSet set;
    const test::CountingReloadListener listener(set);
    GetParam().apply(set, true);
    EXPECT_EQ(listener.count, 1);
    GetParam().apply(set, true);
    EXPECT_EQ(listener.count, 1) << "nothing changed the second time";
}

TEST_P(StructuralChanges, AreSilentOnRequest) {
    ParameterSet set;
    const test::CountingReloadListener listener(set);
    GetParam().apply(set, false);
    EXPECT_EQ(listener.count, 0);
}

INSTANTIATE_TEST_SUITE_P(
    OfTheSet, StructuralChanges,
    ::testing::Values(
        StructuralChange{"reverb off",
                         [](IParameterSet& set, bool notify) { set.setReverbOn(false, notify); }},
        StructuralChange{"reflections off",
                         [](IParameterSet& set, bool notify) { set.setReflectionsOn(false, notify); }},
        StructuralChange{"watch source",
                         [](IParameterSet& set, bool notify) { set.setWatchSource(true, notify); }},
        StructuralChange{"custom room",
                         [](IParameterSet& set, bool notify) { set.setCustomRoom(true, notify); }},
        StructuralChange{"room type",
                         [](IParameterSet& set, bool notify) { set.setRoomType(Room{36}, notify); }},
        StructuralChange{"output format", [](IParameterSet& set, bool notify) {
                             set.setOutputFormat(IOutputFormat::Format::plainTwoChannel, notify);
                         }}));

// The listener interface has a slot for floats too, though no float is structural today.
TEST(ParameterSet, AsListenerOfAFloatAsksForAReload) {
    ParameterSet set;
    const test::CountingReloadListener listener(set);
    zmtl::Parameter<float> outside(0.0f);
    outside.addListener(&set);
    outside.set(1.0f, true);
    EXPECT_EQ(listener.count, 1);
}

TEST(ParameterSet, CallsReloadListenersInTheOrderOfTheirRegistrationUntilTheyLeave) {
    struct Named final : orvane::IReloadListener {
        Named(char name, std::vector<char>& log) : name(name), log(&log) {}
        void reloadRequested() override { log->push_back(name); }
        char name;
        std::vector<char>* log;
    };
    std::vector<char> log;
    Named a('a', log);
    Named b('b', log);
    ParameterSet set;
    set.addReloadListener(&b);
    set.addReloadListener(&a);
    set.addReloadListener(&b);
    set.notifyReloadListeners();
    EXPECT_THAT(log, ElementsAre('b', 'a', 'b'));
    log.clear();
    set.removeReloadListener(&b);
    set.notifyReloadListeners();
    EXPECT_THAT(log, ElementsAre('a'));
}

struct SnapshotCase {
    std::uint32_t room;
    bool reverb;
    bool reflections;
};

void PrintTo(const SnapshotCase& c, std::ostream* stream) { *stream << "room " << c.room; }

class Snapshots : public ::testing::TestWithParam<SnapshotCase> {};

// Room 0 has nothing, room 1 reflections without a reverb.
TEST_P(Snapshots, TellWhatTheRoomOffersOnlyWhereItIsSwitchedOn) {
    const auto [room, reverb, reflections] = GetParam();
    for (const bool on : {false, true}) {
        ParameterSet set;
        set.setRoomType(Room{room}, false);
        set.setReverbOn(on, false);
        set.setReflectionsOn(on, false);
        const auto snapshot = set.createReloadParameterSet();
        EXPECT_EQ(snapshot->hasReverb(), on && reverb);
        EXPECT_EQ(snapshot->reflectionsActive(), on && reflections);
        EXPECT_EQ(snapshot->roomId(), room);
    }
}
INSTANTIATE_TEST_SUITE_P(ByRoom, Snapshots,
                         ::testing::Values(SnapshotCase{0, false, false}, SnapshotCase{1, false, true},
                                           SnapshotCase{2, true, true}, SnapshotCase{47, true, true}));

TEST(ReloadSnapshot, DoesNotFollowLaterChanges) {
    ParameterSet set;
    set.setWatchSource(true, false);
    set.setCustomRoom(true, false);
    const auto snapshot = set.createReloadParameterSet();
    set.setWatchSource(false, false);
    set.setCustomRoom(false, false);
    set.setReverbOn(false, false);
    set.setReflectionsOn(false, false);
    set.setRoomType(Room{0}, false);
    set.setOutputFormat(IOutputFormat::Format::plainTwoChannel, false);
    EXPECT_TRUE(snapshot->watchSource());
    EXPECT_TRUE(snapshot->roomIsDynamic());
    EXPECT_TRUE(snapshot->hasReverb());
    EXPECT_TRUE(snapshot->reflectionsActive());
    EXPECT_EQ(snapshot->roomId(), 5u);
    EXPECT_TRUE(snapshot->getOutputFormat()->isBinaural());
}

TEST(ReloadSnapshot, OfAnUnknownOutputFormatIsRefused) {
    ParameterSet set;
    set.setOutputFormat(IOutputFormat::Format{3}, false);
    EXPECT_THROW(set.createReloadParameterSet(), std::invalid_argument);
}

/// Slow reference: the level law in double precision.
double levelAt(double d) { return 1.0 / (std::pow(d + 0.7, 0.75) + 0.3265); }

TEST(DerivedValues, DistanceLevelFollowsTheLevelLaw) {
    ParameterSet set;
    for (const float distance : {0.1f, 0.5f, 1.5f, 3.0f, 7.0f, 18.9f, 100.0f}) {
        set.setDistance(distance, false);
        // a few roundings of a float
        EXPECT_NEAR(set.getDistanceLevel() / levelAt(static_cast<double>(distance)), 1.0, 3e-7) << distance;
    }
}

TEST(DerivedValues, UseTheScaledDistanceButNeverLessThanTenCentimetres) {
    ParameterSet set;
    set.setDistance(2.0f, false);
    set.setDistanceScale(4.0f, false);
    EXPECT_NEAR(set.getDistanceLevel() / levelAt(8.0), 1.0, 3e-7);
    EXPECT_FLOAT_EQ(set.getFarFade(), 1.0f - 1.0f / 26.0f);
    for (const float scale : {0.0f, 0.05f, -4.0f}) {
        set.setDistanceScale(scale, false);
        EXPECT_NEAR(set.getDistanceLevel() / levelAt(0.1), 1.0, 3e-7) << scale;
        EXPECT_EQ(set.getFarFade(), 1.0f);
    }
}

// Analytic: full up to 7 metres, then a straight line over 26 metres to nothing.
TEST(DerivedValues, FarFadeIsAStraightLineFromSevenToThirtyThreeMetres) {
    ParameterSet set;
    const auto fadeAt = [&set](float distance) {
        set.setDistance(distance, false);
        return set.getFarFade();
    };
    EXPECT_EQ(fadeAt(0.1f), 1.0f);
    EXPECT_EQ(fadeAt(7.0f), 1.0f);
    EXPECT_LT(fadeAt(std::nextafter(8.0f, 9.0f)), 1.0f);
    EXPECT_FLOAT_EQ(fadeAt(20.0f), 0.5f);
    EXPECT_EQ(fadeAt(33.0f), 0.0f);
    EXPECT_EQ(fadeAt(34.0f), 0.0f);
    EXPECT_EQ(fadeAt(1000.0f), 0.0f);
}

TEST(DerivedValues, AttenuationIsTheSameUnderTheSpatialAndTheReverbView) {
    ParameterSet set;
    const orvane::ISpatialParameterSetView& spatial = set;
    const orvane::IReverbParameterView& reverb = set;
    EXPECT_EQ(spatial.getAttenuationDb(), 0.0f);
    set.setAttenuationValue(50.0f, false);
    EXPECT_FLOAT_EQ(spatial.getAttenuationDb(), 12.0f);
    EXPECT_EQ(spatial.getAttenuationDb(), reverb.getAttenuationDb());
}

// Every face reads the one value that any face wrote.
TEST(ParameterSet, ShowsOneDistanceUnderAllItsFaces) {
    ParameterSet set;
    static_cast<orvane::IReverbParameterSet&>(set).setDistance(4.5f, false);
    EXPECT_EQ(static_cast<const orvane::IInputParameterSetView&>(set).getDistance(), 4.5f);
    EXPECT_EQ(static_cast<const orvane::ISpatialParameterSetView&>(set).getDistance(), 4.5f);
    EXPECT_EQ(static_cast<const orvane::IMultichannelReverbParameterView&>(set).getDistance(), 4.5f);
    static_cast<orvane::IInputParameterSet&>(set).setDistance(6.0f, false);
    EXPECT_EQ(static_cast<const orvane::IReverbParameterView&>(set).getDistance(), 6.0f);
    static_cast<orvane::IMultichannelReverbParameterSet&>(set).setFloorLevelDb(-80.0f, false);
    EXPECT_EQ(static_cast<const orvane::ISpatialParameterSetView&>(set).getFloorLevelDb(), -80.0f);
}

TEST(ParameterSet, IsReadAndWrittenWithoutAllocationOrLock) {
    ParameterSet concrete;
    IParameterSet& set = concrete;
    float sum = 0;
    const test::RealtimeScope scope;
    for (const FloatValue& value : continuousValues) {
        value.set(set, 2.0f, false);
        sum += value.get(set);
    }
    sum += set.getDistanceLevel() + set.getFarFade() + set.getAttenuationDb() + set.getHeadRotation()[0];
    set.setRoomType(Room{3}, false);
    set.setReverbOn(false, false);
    EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
    EXPECT_GT(sum, 0.0f);
}

} // namespace
