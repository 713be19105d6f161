// SPDX-License-Identifier: GPL-3.0-or-later
#include "reference/Reflections.h"
#include "room/ListedRooms.h"
#include "room/ReflectionMechanic.h"
#include "room/ReflectionPresetFactory.h"
#include "room/SourceView.h"
#include "room/StandInRoom.h"
#include "support/RealtimeScope.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

namespace {

using orvane::Reflection;
using orvane::ReflectionList;
using orvane::ReflectionMechanic;
using orvane::ReflectionPreset;
using test::plainRoom;
using test::SourceView;
using test::StandInRoom;

constexpr float rate = 44100.0f;
constexpr std::int32_t anyRoom = 15;      // one with the distance law
constexpr std::int32_t noLimit = 1 << 24; // samples
constexpr std::array<float, 7> rates{24000, 44100, 48000, 88200, 96000, 176400, 192000};

/// One reflection of a room, moved once.
Reflection moved(const ReflectionPreset& preset, const SourceView& view, std::int32_t maxDelay = noLimit,
                 std::int32_t roomId = anyRoom, float sampleRate = rate) {
    ReflectionMechanic mechanic(StandInRoom(preset), sampleRate, roomId);
    ReflectionList list = mechanic.reflections();
    mechanic.update(list, view, maxDelay);
    return list[0];
}

class PresetRoom : public ::testing::TestWithParam<std::int32_t> {};

/// Reference: the reflections by their definition in double precision.
TEST_P(PresetRoom, FollowsItsReferenceAtEveryRateAndFromEveryPlace) {
    const ReflectionPreset preset = orvane::ReflectionPresetFactory().create(GetParam());
    for (const float sampleRate : rates) {
        ReflectionMechanic mechanic(orvane::ReflectionPresetFactory(), sampleRate, GetParam());
        const std::int32_t maxDelay = 3968;
        ReflectionList list = mechanic.reflections();
        ASSERT_EQ(list.size(), preset.count);
        for (const float azimuth : {-170.3f, -110.0f, -30.0f, 0.0f, 29.9f, 90.0f, 180.0f}) {
            for (const float elevation : {-40.6f, 0.0f, 30.0f, 90.0f}) {
                SourceView view;
                view.azimuth = azimuth;
                view.elevation = elevation;
                view.farFade = 0.75f;
                view.reflectionGainDb = -2.5f;
                mechanic.update(list, view, maxDelay);
                for (std::size_t i = 0; i < list.size(); ++i) {
                    SCOPED_TRACE(testing::Message() << sampleRate << " Hz, " << azimuth << "/" << elevation
                                                    << ", reflection " << i);
                    const auto expectedWith = [&](test::reference::Nudge nudge) {
                        return test::reference::presetReflection(
                            {preset.azimuths[i], preset.elevations[i], preset.delays[i], preset.levels[i]},
                            {azimuth, elevation, view.distance}, sampleRate, GetParam(), maxDelay, nudge);
                    };
                    auto expected = expectedWith({});
                    if (list[i].delay != expected.delay)
                        expected =
                            expectedWith({.samples = -0.001}); // whole in theory, a little less in floats
                    ASSERT_EQ(list[i].azimuth, expected.azimuth);
                    ASSERT_EQ(list[i].elevation, expected.elevation);
                    ASSERT_EQ(list[i].delay, expected.delay);
                    const double common =
                        0.75 * std::pow(10.0, -2.5 / 20.0) * static_cast<double>(preset.gain);
                    ASSERT_NEAR(list[i].gain, expected.gain * common, 2e-6 * expected.gain * common);
                    ASSERT_EQ(list[i].filter, preset.filters[i]);
                    ASSERT_TRUE(list[i].active);
                }
            }
        }
    }
}
INSTANTIATE_TEST_SUITE_P(OfTheTable, PresetRoom, ::testing::Range(1, 48));

TEST(ReflectionMechanic, AnswersTheLengthOfItsRoomAndScalesItUp) {
    const ReflectionMechanic at44(orvane::ReflectionPresetFactory(), 44100.0f, 15);
    EXPECT_EQ(at44.length(), 2048u);
    EXPECT_EQ(at44.scaledLength(), 2048u);
    // 2048 * 96000 / 44100 = 4458.2, rounded up; 1024 * 24000 / 44100 = 557.3.
    EXPECT_EQ(ReflectionMechanic(orvane::ReflectionPresetFactory(), 96000.0f, 15).scaledLength(), 4459u);
    EXPECT_EQ(ReflectionMechanic(orvane::ReflectionPresetFactory(), 24000.0f, 24).scaledLength(), 558u);
    const ReflectionMechanic none(orvane::ReflectionPresetFactory(), 48000.0f, 0);
    EXPECT_EQ(none.scaledLength(), 0u);
    EXPECT_EQ(none.reflections().size(), 0u);
}

TEST(ReflectionMechanic, ItsTemplateIsActiveWithScaledDelaysAndLoweredLevels) {
    ReflectionPreset preset = plainRoom(1);
    preset.azimuths[0] = -70;
    preset.elevations[0] = 5;
    preset.delays[0] = 101;
    preset.filters[0] = 1;
    const ReflectionMechanic mechanic(StandInRoom(preset), 88200.0f, anyRoom);
    const Reflection designed = mechanic.reflections()[0];
    EXPECT_EQ(designed.azimuth, -70);
    EXPECT_EQ(designed.elevation, 5);
    EXPECT_EQ(designed.delay, 202);
    EXPECT_EQ(designed.filter, 1u);
    EXPECT_FLOAT_EQ(designed.gain, 0.055f);
    EXPECT_TRUE(designed.active);
}

/// 7600 * 192000 / 44100 = 33088.4; 33088 - 65536 = -32448. Such a reflection is shifted out of every response.
TEST(ReflectionMechanic, ADelayBeyond16BitsWraps) {
    ReflectionPreset preset = plainRoom(2);
    preset.delays = {7600, 7500}; // 32653 still fits
    const ReflectionMechanic mechanic(StandInRoom(preset), 192000.0f, anyRoom);
    EXPECT_EQ(mechanic.reflections()[0].delay, -32448);
    EXPECT_EQ(mechanic.reflections()[1].delay, 32653);
}

/// No listed room comes that far: 7398 at 44100 Hz would be the last delay to fit at 192000 Hz.
TEST(ReflectionMechanic, NoListedRoomWrapsAtAnyRate) {
    for (std::int32_t room = 1; room <= 47; ++room) {
        const ReflectionMechanic mechanic(orvane::ReflectionPresetFactory(), 192000.0f, room);
        for (const Reflection& reflection : mechanic.reflections())
            EXPECT_GE(reflection.delay, 0) << room;
    }
}

TEST(ReflectionMechanic, TurnsAgainstTheSourceTruncatedTowardsZeroAndWrapped) {
    ReflectionPreset preset = plainRoom(1);
    SourceView view;
    const auto azimuth = [&](std::int16_t designed, float source) {
        preset.azimuths[0] = designed;
        view.azimuth = source;
        return moved(preset, view).azimuth;
    };
    EXPECT_EQ(azimuth(-5, 30.7f), -35);
    EXPECT_EQ(azimuth(5, 4.3f), 0);
    EXPECT_EQ(azimuth(5, 5.9f), 0);
    EXPECT_EQ(azimuth(-175, 5.0f), 180);
    EXPECT_EQ(azimuth(-175, 10.0f), 175);
    EXPECT_EQ(azimuth(75, -110.0f), -175);
    EXPECT_EQ(azimuth(0, 180.0f), 180);
}

TEST(ReflectionMechanic, AddsTheElevationsAndStopsAt75) {
    ReflectionPreset preset = plainRoom(1);
    SourceView view;
    const auto elevation = [&](std::int16_t designed, float source) {
        preset.elevations[0] = designed;
        view.elevation = source;
        return moved(preset, view).elevation;
    };
    EXPECT_EQ(elevation(60, 80.0f), 75);
    EXPECT_EQ(elevation(-30, -80.0f), -75);
    EXPECT_EQ(elevation(-30, 29.5f), 0);
    EXPECT_EQ(elevation(5, -5.9f), 0);
    EXPECT_EQ(elevation(5, 30.9f), 35);
}

TEST(ReflectionMechanic, StartsFromTheSourceAsTheTurnedHeadSeesIt) {
    SourceView view;
    view.rotation = {0, 0, -1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1}; // what is ahead goes to the right
    EXPECT_NEAR(moved(plainRoom(1), view).azimuth, -90, 1);
}

TEST(ReflectionMechanic, WarpsTheSourceAzimuth) {
    SourceView view;
    view.azimuth = 30;
    view.azimuthExponent = 2; // 30^2 * 90 / 90^2 = 10
    EXPECT_EQ(moved(plainRoom(1), view).azimuth, -10);
}

TEST(ReflectionMechanic, FoldsALateDelayBackAndKeepsItFolded) {
    ReflectionPreset preset = plainRoom(1);
    preset.delays[0] = 5123;
    ReflectionMechanic mechanic(StandInRoom(preset), rate, anyRoom);
    ReflectionList list = mechanic.reflections();
    const SourceView view;
    mechanic.update(list, view, 4000);
    EXPECT_EQ(list[0].delay, 3977);
    mechanic.update(list, view, noLimit);
    EXPECT_EQ(list[0].delay, 3977) << "an update does not go back to the template";
    mechanic.update(list, view, 3970);
    EXPECT_EQ(list[0].delay, 3970 - 77) << "what is folded again is what the list holds";
}

/// Analytic: one over the distance that the delay stands for, at half level, of 0.55 times the level.
TEST(ReflectionMechanic, FallsWithTheDistanceOfItsDelay) {
    ReflectionPreset preset = plainRoom(1);
    const auto gain = [&](std::int16_t delay, std::int32_t maxDelay = noLimit) {
        preset.delays[0] = delay;
        return moved(preset, SourceView(), maxDelay).gain;
    };
    constexpr double samplesPerMetre = 44100.0 / 343.42;
    EXPECT_NEAR(gain(1284), 0.5 * 0.055 * samplesPerMetre / 1284.0, 1e-9);
    EXPECT_NEAR(gain(129), 0.5 * 0.055 * samplesPerMetre / 129.0, 1e-8);
    EXPECT_NEAR(gain(128), 0.5 * 0.055, 1e-8) << "nearer than a metre";
    EXPECT_NEAR(gain(0), 0.5 * 0.055, 1e-8) << "no delay: infinity is capped as well";
    EXPECT_NEAR(gain(5123, 4000), 0.5 * 0.055 * samplesPerMetre / 3977.0, 1e-9) << "the folded delay counts";
}

TEST(ReflectionMechanic, RoomsZeroAndOneHaveNoDistanceLaw) {
    for (const std::int32_t room : {-1, 0, 1})
        EXPECT_FLOAT_EQ(moved(plainRoom(1), SourceView(), noLimit, room).gain, 0.055f) << room;
    EXPECT_LT(moved(plainRoom(1), SourceView(), noLimit, 2).gain, 0.05f);
}

TEST(ReflectionMechanic, ScalesWithTheFarFadeTheUsersGainAndTheRooms) {
    ReflectionPreset preset = plainRoom(1);
    preset.gain = 5.8f;
    SourceView view;
    view.farFade = 0.25f;
    view.reflectionGainDb = 6.0f;
    const float plain = moved(plainRoom(1), SourceView()).gain;
    EXPECT_NEAR(moved(preset, view).gain / plain, 5.8 * 0.25 * std::pow(10.0, 0.3), 1e-5);
}

/// Property: the directions of the reflections turn with the source; their levels and times do not.
TEST(ReflectionMechanic, ASourceOnTheOtherSideHasTheSameGainsAndDelays) {
    for (const std::int32_t room : {13, 15, 24, 27, 32, 36, 44}) {
        ReflectionMechanic mechanic(orvane::ReflectionPresetFactory(), 48000.0f, room);
        ReflectionList here = mechanic.reflections();
        ReflectionList there = mechanic.reflections();
        SourceView view;
        for (const float azimuth : {7.0f, 35.0f, 110.0f, 151.5f}) {
            view.azimuth = azimuth;
            mechanic.update(here, view, 3957);
            view.azimuth = -azimuth;
            mechanic.update(there, view, 3957);
            for (std::size_t i = 0; i < here.size(); ++i) {
                EXPECT_EQ(here[i].gain, there[i].gain) << room << ", " << i;
                EXPECT_EQ(here[i].delay, there[i].delay) << room << ", " << i;
                EXPECT_EQ(here[i].elevation, there[i].elevation) << room << ", " << i;
            }
        }
    }
}

/// Property: in a room whose walls are mirrored with the source every direction is, too.
TEST(ReflectionMechanic, AMirroredRoomMirrorsEveryDirection) {
    ReflectionPreset preset = orvane::ReflectionPresetFactory().create(36);
    ReflectionPreset mirrored = preset;
    for (std::int16_t& azimuth : mirrored.azimuths)
        azimuth = static_cast<std::int16_t>(-azimuth);
    ReflectionMechanic mechanic(StandInRoom(preset), rate, 36);
    ReflectionMechanic otherHand(StandInRoom(mirrored), rate, 36);
    ReflectionList list = mechanic.reflections();
    ReflectionList otherList = otherHand.reflections();
    SourceView view;
    for (float azimuth = -179.5f; azimuth < 180.0f; azimuth += 7.25f) {
        view.azimuth = azimuth;
        mechanic.update(list, view, noLimit);
        view.azimuth = -azimuth;
        otherHand.update(otherList, view, noLimit);
        for (std::size_t i = 0; i < list.size(); ++i)
            EXPECT_EQ(otherList[i].azimuth, list[i].azimuth == 180 ? 180 : -list[i].azimuth) << azimuth;
    }
}

/// Property over random places, rooms and rates: what a renderer relies on.
TEST(ReflectionMechanic, NeitherGrowsItsListNorLeavesTheResponse) {
    std::mt19937 generator(52);
    const auto uniform = [&](float low, float high) {
        return low + (high - low) * static_cast<float>(generator() >> 8) / 16777216.0f;
    };
    for (int round = 0; round < 400; ++round) {
        const auto room = static_cast<std::int32_t>(1 + generator() % 47);
        const float sampleRate = rates[generator() % rates.size()];
        ReflectionMechanic mechanic(orvane::ReflectionPresetFactory(), sampleRate, room);
        ReflectionList list = mechanic.reflections();
        const std::size_t count = list.size();
        const auto maxDelay = static_cast<std::int32_t>(1024.0f * sampleRate / 44100.0f + uniform(-70, 3000));
        for (int block = 0; block < 5; ++block) {
            SourceView view;
            view.azimuth = uniform(-180, 180);
            view.elevation = uniform(-90, 90);
            view.distance = uniform(0, 40);
            view.farFade = uniform(0, 1);
            view.reflectionGainDb = uniform(-10, 10);
            mechanic.update(list, view, maxDelay);
            ASSERT_EQ(list.size(), count);
            for (const Reflection& reflection : list) {
                ASSERT_GE(reflection.delay, 0);
                ASSERT_LE(reflection.delay, maxDelay);
                ASSERT_TRUE(std::isfinite(reflection.gain));
                ASSERT_GE(reflection.gain, 0.0f);
                ASSERT_TRUE(reflection.azimuth > -180 && reflection.azimuth <= 180);
                ASSERT_LE(std::abs(reflection.elevation), 75);
            }
        }
    }
}

TEST(ReflectionMechanic, NeitherAllocatesNorLocks) {
    ReflectionMechanic mechanic(orvane::ReflectionPresetFactory(), 48000.0f, 36);
    ReflectionList list = mechanic.reflections();
    SourceView view;
    const test::RealtimeScope scope;
    for (int block = 0; block < 8; ++block) {
        view.azimuth = static_cast<float>(40 * block - 180);
        mechanic.update(list, view, 3000);
    }
    EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
}

} // namespace
