// SPDX-License-Identifier: GPL-3.0-or-later
// The loudspeaker's two stages: that a key tells every difference, and that what is kept makes none.
#include "base/SampleBuffer.h"
#include "binaural/BinauralComponentFactory.h"
#include "binaural/IResponseStage.h"
#include "engine/assembly/ComponentFactory.h"
#include "parameters/core/SpeakerViewSnapshot.h"
#include "room/EveryValueView.h"
#include "room/RealtimeReflectionMechanic.h"
#include "room/ReflectionMechanic.h"
#include "room/ReflectionPresetFactory.h"
#include "room/SpeakerDirectFilterRenderer.h"
#include "room/SpeakerReflectionRenderer.h"
#include "support/GridHead.h"
#include "support/RealtimeScope.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <set>
#include <string>

namespace {

using namespace orvane;
using test::EveryValueView;

constexpr std::uint64_t headLength = 139;
constexpr float rate = 48000;
constexpr std::uint64_t responseLength = 8916;

enum class Kind { direct, designedRoom, customRoom };

std::string nameOf(const ::testing::TestParamInfo<Kind>& kind) {
    return kind.param == Kind::direct ? "Direct" : kind.param == Kind::designedRoom ? "Designed" : "Custom";
}

std::unique_ptr<IReflectionMechanic> mechanicOf(Kind kind, std::int32_t room, float sampleRate) {
    if (kind == Kind::designedRoom)
        return std::make_unique<ReflectionMechanic>(ReflectionPresetFactory(), sampleRate, room);
    return std::make_unique<RealtimeReflectionMechanic>(ReflectionPresetFactory(), sampleRate, room);
}

std::unique_ptr<IResponseStage> stageOf(Kind kind, EveryValueView& view, IHrir& head,
                                        const RenderOptions& options = {}, std::int32_t room = 33,
                                        float sampleRate = rate, std::uint64_t length = responseLength) {
    const BinauralComponentFactory binaural(options);
    if (kind == Kind::direct)
        return std::make_unique<kestrum::core::DirectFilterRenderer>(&view, &head, false, binaural);
    const kestrum::core::ComponentFactory product;
    return std::make_unique<kestrum::core::ReflectionRenderer>(
        sampleRate, length, false, &view, &head, mechanicOf(kind, room, sampleRate), binaural, product);
}

constexpr RenderOptions withoutTable{RenderPath::plain, InstructionSet::scalar};

ResponseKey keyOf(IResponseStage& stage) {
    ResponseKey key;
    stage.describe(key);
    return key;
}

/// Equal bits, or neither a number: which NaN comes of two is left to the compiler.
void expectSame(const SampleBuffer& expected, const SampleBuffer& actual) {
    for (std::uint64_t ear = 0; ear < expected.numChannels; ++ear)
        for (std::uint64_t i = 0; i < expected.numSamples; ++i) {
            const float a = expected.channelPointers[ear][i];
            const float b = actual.channelPointers[ear][i];
            const bool same = std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b) ||
                              (std::isnan(a) && std::isnan(b));
            ASSERT_TRUE(same) << a << " and " << b << " at " << ear << "/" << i;
        }
}

bool differ(const SampleBuffer& a, const SampleBuffer& b) {
    for (std::uint64_t ear = 0; ear < a.numChannels; ++ear)
        if (!std::equal(a.channelPointers[ear], a.channelPointers[ear] + a.numSamples,
                        b.channelPointers[ear]))
            return true;
    return false;
}

SampleBuffer responseOf(Kind kind, EveryValueView& view, IHrir& head) {
    SampleBuffer response(2, responseLength + 64);
    stageOf(kind, view, head)->process(response);
    return response;
}

HeadRotationMatrix turned(float degrees) {
    const float a = degrees / 180.0f * 3.1415927f;
    return {std::cos(a), 0, -std::sin(a), 0, 0, 1, 0, 0, std::sin(a), 0, std::cos(a), 0, 0, 0, 0, 1};
}

class Stage : public ::testing::TestWithParam<Kind> {
protected:
    test::GridHead head{headLength};
    EveryValueView view;
};
INSTANTIATE_TEST_SUITE_P(Loudspeaker, Stage,
                         ::testing::Values(Kind::direct, Kind::designedRoom, Kind::customRoom), nameOf);

/// Every value in turn: where the definition hears a difference, the key shows one.
TEST_P(Stage, HasAnotherKeyForEveryValueThatItsResponseDependsOn) {
    using V = EveryValueView;
    std::set<std::size_t> expected{V::azimuth, V::elevation, V::azimuthExponent, V::farFade, V::clarity};
    if (GetParam() == Kind::direct)
        expected.insert({V::directGainDb, V::distanceLevel});
    else
        expected.insert({V::reflectionLowPass, V::reflectionHighPass, V::reflectionGainDb});
    if (GetParam() == Kind::customRoom)
        expected.insert(
            {V::distance, V::distanceScale, V::ceiling, V::floor, V::right, V::left, V::front, V::back});
    const SampleBuffer before = responseOf(GetParam(), view, head);
    std::set<std::size_t> heard;
    for (std::size_t value = 0; value < V::count; ++value) {
        const auto stage = stageOf(GetParam(), view, head);
        const ResponseKey key = keyOf(*stage);
        const float was = view.values[value];
        view.values[value] = value == V::elevation ? was + 9.0f : was * 1.3f + 0.1f;
        if (differ(before, responseOf(GetParam(), view, head))) {
            heard.insert(value);
            EXPECT_FALSE(keyOf(*stage) == key) << value;
        }
        view.values[value] = was;
    }
    EXPECT_EQ(heard, expected);
}

TEST_P(Stage, HasAnotherKeyForATurnedHeadAndForAReplacedSet) {
    const auto stage = stageOf(GetParam(), view, head);
    const ResponseKey key = keyOf(*stage);
    view.rotation = turned(30);
    EXPECT_FALSE(keyOf(*stage) == key);
    view.rotation = orvane::identityRotation;
    EXPECT_TRUE(keyOf(*stage) == key);
    head.replace();
    EXPECT_FALSE(keyOf(*stage) == key);
}

/// The custom model in room 1 has levels without distance: its ceiling decides nothing but when one reflection comes.
TEST(ReflectionStage, HasAnotherKeyForAnotherDelayAlone) {
    test::GridHead head{headLength};
    EveryValueView view;
    constexpr std::int32_t roomWithoutDistances = 1;
    const auto stage = stageOf(Kind::customRoom, view, head, {}, roomWithoutDistances);
    const ResponseKey key = keyOf(*stage);
    SampleBuffer before(2, responseLength);
    stage->process(before);
    view.values[EveryValueView::ceiling] += 1;
    EXPECT_FALSE(keyOf(*stage) == key);
    SampleBuffer after(2, responseLength);
    stage->process(after);
    EXPECT_TRUE(differ(before, after));
}

TEST_P(Stage, HasOneKeyForAllDirectionsOfACell) {
    view.values[EveryValueView::azimuthExponent] = 1;
    view.values[EveryValueView::azimuth] = 31;
    const auto stage = stageOf(GetParam(), view, head);
    const ResponseKey key = keyOf(*stage);
    view.values[EveryValueView::azimuth] = 31.5f;
    // The custom room's levels follow the source's direction without steps.
    EXPECT_EQ(keyOf(*stage) == key, GetParam() != Kind::customRoom);
}

TEST_P(Stage, CountsAValueThatIsNotANumberAsItself) {
    const auto stage = stageOf(GetParam(), view, head);
    view.values[EveryValueView::farFade] = std::numeric_limits<float>::quiet_NaN();
    const ResponseKey key = keyOf(*stage);
    EXPECT_TRUE(keyOf(*stage) == key);
}

/// Describing again what is the same changes nothing, whatever the walls did before: what is skipped while
/// nothing changes would have had no effect.
TEST(DescribedRoom, StaysAsItIsWhileItsValuesDo) {
    for (const Kind kind : {Kind::designedRoom, Kind::customRoom})
        for (const float sampleRate : {24000.0f, 48000.0f, 192000.0f})
            for (std::int32_t room = 1; room <= 47; ++room) {
                test::GridHead head(static_cast<std::uint64_t>(sampleRate / 344));
                EveryValueView view;
                std::mt19937 random(static_cast<std::uint32_t>(room));
                const auto stage = stageOf(kind, view, head, withoutTable, room, sampleRate, 2048);
                for (int change = 0; change < 12; ++change) {
                    const ResponseKey key = keyOf(*stage);
                    for (int again = 0; again < 3; ++again)
                        ASSERT_TRUE(keyOf(*stage) == key) << room << " " << sampleRate << " " << change;
                    const std::size_t wall = EveryValueView::ceiling + random() % 6;
                    view.values[wall] = static_cast<float>(random() % 64) / 4.0f; // 0: no wall
                    if (change == 8)
                        view.values[wall] = std::numeric_limits<float>::quiet_NaN();
                    view.values[EveryValueView::distance] = static_cast<float>(random() % 40) / 4.0f;
                    view.values[EveryValueView::azimuth] = static_cast<float>(random() % 360) - 179.0f;
                }
            }
}

/// Null test of the two ways to draw, over random moves with gains that make zeros of either sign, infinities
/// and values that are not numbers.
TEST_P(Stage, DrawsWhatProcessDraws) {
    for (const RenderOptions& options : {RenderOptions{}, withoutTable}) {
        const auto expected = stageOf(GetParam(), view, head, options);
        const auto actual = stageOf(GetParam(), view, head, options);
        std::mt19937 random(5);
        const auto one = [&] { return std::uniform_real_distribution<float>(0.0f, 1.0f)(random); };
        SampleBuffer a(2, responseLength + 64);
        SampleBuffer b(2, responseLength + 64);
        for (int move = 0; move < 150; ++move) {
            const std::size_t value = random() % EveryValueView::count;
            if (value == EveryValueView::farFade && one() < 0.5f)
                view.values[value] = std::array{0.0f, -1.0f, std::numeric_limits<float>::infinity(),
                                                std::numeric_limits<float>::quiet_NaN()}[random() % 4];
            else if (value == EveryValueView::farFade || move % 10 == 9)
                view.values[EveryValueView::farFade] = one();
            else
                view.values[value] *= 0.7f + 0.6f * one();
            view.rotation = turned(40.0f * one());
            a.clear();
            b.clear();
            expected->process(a);
            ResponseKey key;
            actual->describe(key);
            ASSERT_TRUE(actual->draw(b));
            expectSame(a, b);
            if (HasFatalFailure())
                FAIL() << "move " << move;
        }
    }
}

/// On top of a buffer full of -0: where the definition adds a zero, so has the drawing.
TEST(ReflectionStage, AddsZerosWhereNoReflectionIs) {
    test::GridHead head(headLength);
    EveryValueView view;
    const auto expected = stageOf(Kind::designedRoom, view, head);
    const auto actual = stageOf(Kind::designedRoom, view, head);
    SampleBuffer a(2, responseLength);
    for (std::uint64_t ear = 0; ear < 2; ++ear)
        std::fill_n(a.channelPointers[ear], a.numSamples, -0.0f);
    SampleBuffer b = a;
    expected->process(a);
    ResponseKey key;
    actual->describe(key);
    actual->draw(b);
    expectSame(a, b);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(a.channelPointers[0][4095]), 0u);
    EXPECT_NE(std::bit_cast<std::uint32_t>(a.channelPointers[0][4096]), 0u); // out of reach
}

/// Without a table, each reflection that is worked out asks the store once.
TEST(ReflectionStage, WorksOutOnlyTheReflectionsThatCrossedAGridLine) {
    test::GridHead head(headLength);
    EveryValueView view;
    view.values[EveryValueView::azimuthExponent] = 1;
    view.values[EveryValueView::azimuth] = 0;
    const auto stage = stageOf(Kind::designedRoom, view, head, withoutTable);
    SampleBuffer response(2, responseLength);
    std::uint64_t most = 0;
    std::uint64_t all = 0;
    for (int step = 0; step <= 50; ++step) {
        view.values[EveryValueView::azimuth] = static_cast<float>(step) / 10.0f;
        const std::uint64_t before = head.asked;
        ResponseKey key;
        stage->describe(key);
        stage->draw(response);
        const std::uint64_t asked = head.asked - before;
        if (step == 0)
            EXPECT_EQ(asked, 6u);
        else {
            most = std::max(most, asked);
            all += asked;
        }
    }
    // Over 5 degrees each of the six crosses one line, or two at its ends, and not all at once.
    EXPECT_GE(all, 6u);
    EXPECT_LE(all, 12u);
    EXPECT_LT(most, 6u);
}

TEST_P(Stage, SaysWhenTheSetWasReplacedBetweenDescribingAndDrawing) {
    const auto stage = stageOf(GetParam(), view, head);
    SampleBuffer response(2, responseLength);
    ResponseKey key;
    stage->describe(key);
    head.replace();
    EXPECT_FALSE(stage->draw(response));
    response.clear();
    key.clear();
    stage->describe(key);
    EXPECT_TRUE(stage->draw(response));
    SampleBuffer expected(2, responseLength);
    stageOf(GetParam(), view, head)->process(expected);
    expectSame(expected, response);
}

TEST_P(Stage, NeitherAllocatesNorLocksWhetherTheTableKnowsOrNot) {
    const auto stage = stageOf(GetParam(), view, head);
    SampleBuffer response(2, responseLength);
    const test::RealtimeScope scope;
    for (int step = 0; step < 12; ++step) {
        view.values[EveryValueView::azimuth] = static_cast<float>(step % 6) * 11.0f;
        ResponseKey key;
        stage->describe(key);
        stage->draw(response);
    }
    EXPECT_EQ(scope.violations().total(), 0u) << scope.violations();
}

TEST(SpeakerViewSnapshot, SaysThatEachValueIsNewOnce) {
    test::GridHead head(headLength);
    EveryValueView view;
    kestrum::core::SpeakerViewSnapshot snapshot(&view, &head);
    EXPECT_TRUE(snapshot.take());
    for (std::size_t value = 0; value < EveryValueView::count; ++value) {
        EXPECT_FALSE(snapshot.take());
        view.values[value] = -view.values[value] - (view.values[value] == 0.0f ? 0.0f : 1.0f);
        EXPECT_TRUE(snapshot.take()) << value; // a zero has become the other zero
    }
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_FALSE(snapshot.take());
        view.rotation[i] = std::numeric_limits<float>::quiet_NaN();
        EXPECT_TRUE(snapshot.take()) << i;
    }
    head.replace();
    EXPECT_TRUE(snapshot.take());
    EXPECT_FALSE(snapshot.take());
}

TEST(SpeakerViewSnapshot, GivesEveryValueAsItWasTaken) {
    test::GridHead head(headLength);
    EveryValueView view;
    for (std::size_t value = 0; value < EveryValueView::count; ++value)
        view.values[value] = static_cast<float>(value) + 0.5f;
    view.rotation = turned(20);
    kestrum::core::SpeakerViewSnapshot snapshot(&view, &head);
    const EveryValueView before = view;
    view.values.fill(-1.0f);
    view.rotation = turned(40);
    const kestrum::core::SpeakerViewSnapshot copy(&snapshot, &head);
    EveryValueView read;
    read.values = {
        copy.getAzimuth(),         copy.getElevation(),        copy.getDirectGainDb(),
        copy.getSpatialValue4(),   copy.getAttenuationValue(), copy.getReflectionLowPassFrequency(),
        copy.getDistanceLevel(),   copy.getFarFade(),          copy.getAttenuationDb(),
        copy.getAzimuthExponent(), copy.getFloorLevelDb(),     copy.getDistance(),
        copy.getDistanceScale(),   copy.getReflectionGainDb(), copy.getCeilingDistance(),
        copy.getFloorDistance(),   copy.getRightDistance(),    copy.getLeftDistance(),
        copy.getFrontDistance(),   copy.getBackDistance(),     copy.getReflectionHighPassFrequency(),
        copy.getClarity()};
    EXPECT_EQ(read.values, before.values);
    EXPECT_EQ(copy.getHeadRotation(), before.rotation);
}

} // namespace
