// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/RoomStatistics.h"

#include "Refusal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace orvane::kestrum::tools;
using test::refusal;
using ::testing::AllOf;
using ::testing::HasSubstr;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// By hand: 4 m by 5 m by 3 m.
TEST(RoomSizes, ComeFromTheWalls) {
    const RoomBox box = roomBox({}, {1, 3, 2, 3, 1.5, 1.5});
    EXPECT_DOUBLE_EQ(box.volume, 60);
    EXPECT_DOUBLE_EQ(box.surface, 94);
}

/// By hand: a box of sides 1, 2^(1/3) and 2^(2/3) has the volume 2.
TEST(RoomSizes, OfAVolumeAloneHaveTheSurfaceOfAUsualBox) {
    const double a = 1, b = std::cbrt(2.0), c = b * b;
    const RoomBox box = roomBox(2.0, {});
    EXPECT_NEAR(box.surface, 2 * (a * b + a * c + b * c), 1e-12);
}

/// By hand: walls of 4 x 5 x 3 m make 60 m3 and 94 m2; eight times the volume has four times the surface.
TEST(RoomSizes, OfAVolumeAndWallsHaveTheVolumeInTheWallsProportions) {
    const std::vector<double> walls{1, 3, 2, 3, 1.5, 1.5};
    const RoomBox box = roomBox(480.0, walls);
    EXPECT_DOUBLE_EQ(box.volume, 480);
    EXPECT_NEAR(box.surface, 376, 1e-9);
    EXPECT_FALSE(box.sizedByWalls());
    EXPECT_TRUE(roomBox({}, walls).sizedByWalls());
    EXPECT_DOUBLE_EQ(firstReflectionMs(box, 1), firstReflectionMs(roomBox({}, walls), 1));
}

TEST(RoomSizes, ThatNoRoomHasAreRefused) {
    for (const double volume : {0.0, -5.0, 1e9, notANumber})
        EXPECT_THAT(refusal([&] { roomBox(volume, {}); }), HasSubstr("is no room's: give 1 to 1000000 m3"))
            << volume;
    EXPECT_THAT(refusal([] { roomBox({}, {}); }), HasSubstr("give --volume"));
    EXPECT_THAT(refusal([] { roomBox({}, {1, 2, 3}); }), HasSubstr("--walls has 3 distances: give six"));
    EXPECT_THAT(refusal([] { roomBox({}, {1, 2, 3, 4, 5, 0}); }), HasSubstr("A wall 0 m away"));
    EXPECT_THAT(refusal([] { roomBox({}, {1, 2, 3, 4, 5, notANumber}); }), HasSubstr("A wall nan m away"));
}

TEST(DecayTimes, AreOneForTheMiddleOrSeven) {
    const OctaveTimes one = octaveTimes({0.5});
    EXPECT_DOUBLE_EQ(one[2], 0.5);
    EXPECT_DOUBLE_EQ(one[3], 0.5);
    EXPECT_GT(one[0], one[1]);
    EXPECT_LT(one[6], one[5]);
    const OctaveTimes seven = octaveTimes({0.7, 0.6, 0.5, 0.4, 0.3, 0.2, 0.1});
    EXPECT_DOUBLE_EQ(seven[0], 0.7);
    EXPECT_DOUBLE_EQ(seven[6], 0.1);
}

TEST(DecayTimes, ThatAreNoRoomsAreRefused) {
    EXPECT_THAT(refusal([] { octaveTimes({0.5, 0.4}); }), HasSubstr("--t60 has 2 times"));
    for (const double seconds : {0.0, -1.0, 0.001, 100.0, notANumber})
        EXPECT_THAT(refusal([&] { octaveTimes({seconds}); }),
                    HasSubstr("s is no room's: give 0.03 to 20 seconds"))
            << seconds;
}

/// Analytic: where little is swallowed, T60 is 0.161 V / A, as Sabine has it.
TEST(Absorption, OfALiveRoomIsSabines) {
    const RoomBox box = roomBox(200.0, {});
    EXPECT_NEAR(meanAbsorption(box, 10) * box.surface, 0.161 * 200 / 10, 0.01 * 0.161 * 200 / 10);
}

/// By hand: V 60, S 94, T 0.3 gives an exponent of 0.3429 and a share of 0.2903 (0.161 rounds 24 ln 10 / 343).
TEST(Absorption, OfADryRoomIsEyrings) {
    EXPECT_NEAR(meanAbsorption(roomBox({}, {1, 3, 2, 3, 1.5, 1.5}), 0.3), 0.2903, 0.0005);
}

TEST(Absorption, ThatWouldBeEverythingIsRefused) {
    const RoomBox box = roomBox(1000.0, {});
    EXPECT_THAT(refusal([&] { requirePossible(box, octaveTimes({0.05})); }),
                AllOf(HasSubstr("No room of 1000 m3 decays within"), HasSubstr("a smaller --volume")));
    EXPECT_THAT(refusal([] {
                    requirePossible(roomBox({}, {5, 5, 5, 5, 5, 5}), octaveTimes({0.05}));
                }),
                HasSubstr("shorter distances with --walls"));
    EXPECT_NO_THROW(requirePossible(box, octaveTimes({0.5})));
}

/// By hand: R = 94 * 0.2903 / 0.7097 = 38.45; sqrt(10^0.7 * 38.45 / 16 pi) = 1.958 m.
TEST(CriticalDistances, ComeFromTheRoomConstant) {
    EXPECT_NEAR(criticalDistance(roomBox({}, {1, 3, 2, 3, 1.5, 1.5}), 0.3, 7), 1.958, 0.005);
}

/// Analytic: a rest as strong as the direct sound that has fallen to a thousandth after 50 ms leaves nearly 33 dB.
TEST(Clarities, CountWhatIsLeftAfterFiftyMilliseconds) {
    EXPECT_NEAR(statisticalClarityDb(0, 0.1), 10 * std::log10((2 - 1e-3) / 1e-3), 1e-9);
}

/// By hand, for loudspeakers 2 m away, 1 m to either side and 1.732 m in front. Left wall 1.9 m off: the left one's image
/// stands 2.8 m to the left, its path is sqrt(2.8^2 + 1.732^2) = 3.292 m, 1.292 m longer than the direct one.
TEST(FirstReflections, ComeOffTheSideWallThatTheLoudspeakerStandsNearTo) {
    EXPECT_NEAR(firstReflectionMs(roomBox({}, {9, 9, 1.9, 2.3, 9, 1.2}), 2), 1000 * 1.292 / 343, 0.01);
    EXPECT_NEAR(firstReflectionMs(roomBox({}, {9, 9, 2.3, 1.9, 9, 1.2}), 2), 1000 * 1.292 / 343, 0.01);
}

/// By hand, the same loudspeakers. Front wall 2.5 m off: sqrt(1^2 + 3.268^2) = 3.418 m. Back wall 1 m off:
/// sqrt(1^2 + 3.732^2) = 3.864 m. Ceiling 1.2 m above: sqrt(2^2 + 2.4^2) = 3.124 m.
TEST(FirstReflections, ComeOffFrontBackAndCeilingWhereTheseAreNear) {
    EXPECT_NEAR(firstReflectionMs(roomBox({}, {2.5, 9, 9, 9, 9, 1.2}), 2), 1000 * 1.418 / 343, 0.01);
    EXPECT_NEAR(firstReflectionMs(roomBox({}, {9, 1, 9, 9, 9, 1.2}), 2), 1000 * 1.864 / 343, 0.01);
    EXPECT_NEAR(firstReflectionMs(roomBox({}, {9, 9, 9, 9, 1.2, 1.2}), 2), 1000 * 1.124 / 343, 0.01);
}

TEST(Loudspeakers, StandInsideTheWalls) {
    const RoomBox box = roomBox({}, {1.2, 3, 2, 2, 1.5, 1.2});
    EXPECT_LT(defaultDistance(box), 1.2);
    EXPECT_THAT(refusal([&] { requireInside(box, 2); }), HasSubstr("would stand behind the walls"));
    for (const double distance : {0.0, -1.0, 1000.0, notANumber})
        EXPECT_THAT(refusal([&] { requireInside(box, distance); }), HasSubstr("m away are no use"))
            << distance;
    EXPECT_DOUBLE_EQ(defaultDistance(roomBox(60.0, {})), 2);
}

} // namespace
