// SPDX-License-Identifier: GPL-3.0-or-later
#include "tracking/HeadRotationSupported.h"

#include "ipc/OrvaneParameterFactory.h"
#include "parameters/ParameterSet.h"
#include "parameters/SourcePosition.h"
#include "parameters/core/ParameterSet.h"
#include "parameters/core/SliderValue.h"
#include "parameters/core/SpeakerParameterSetView.h"
#include "support/RealtimeScope.h"
#include "support/StandInTracker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstring>
#include <memory>
#include <numbers>
#include <random>
#include <thread>

namespace {

using namespace orvane::kestrum::core;
using orvane::HeadRotationMatrix;
using orvane::SpatialPosition;
using AtomicSlider = internal::SliderValue<std::atomic<float>>;

bool sameBytes(const HeadRotationMatrix& a, const HeadRotationMatrix& b) {
    return std::memcmp(a.data(), b.data(), sizeof a) == 0;
}

/// The azimuth in the range above -180 up to +180.
float normalised(float degrees) {
    while (degrees > 180.0f)
        degrees -= 360.0f;
    while (degrees <= -180.0f)
        degrees += 360.0f;
    return degrees;
}

TEST(AzimuthRotation, IsNeverActive) {
    AtomicSlider dial(90.0f);
    const AzimuthRotationClient client(&dial);
    EXPECT_FALSE(client.isActive());
}

// Byte for byte, since that is how a rotation recognises that it has nothing to do: -sin 0 must not be -0.
TEST(AzimuthRotation, OfZeroIsTheIdentityToTheLastBit) {
    AtomicSlider dial(0.0f);
    const AzimuthRotationClient client(&dial);
    EXPECT_TRUE(sameBytes(client.getRotation(), orvane::identityRotation));
    dial.setValue(10.0f);
    EXPECT_FALSE(sameBytes(client.getRotation(), orvane::identityRotation));
    dial.setValue(-0.0f);
    EXPECT_TRUE(sameBytes(client.getRotation(), orvane::identityRotation));

    AtomicSlider negativeZero(-0.0f);
    EXPECT_TRUE(sameBytes(AzimuthRotationClient(&negativeZero).getRotation(), orvane::identityRotation));
}

TEST(AzimuthRotation, OfZeroLeavesAPositionAsItIs) {
    AtomicSlider dial(0.0f);
    SpatialPosition position(10.0f, 400.0f, 1.5f); // any real rotation would bring the azimuth to 40
    position.rotate(AzimuthRotationClient(&dial).getRotation());
    EXPECT_EQ(position.azimuth, 400.0f);
}

// Slow reference: the rows written out in double precision.
TEST(AzimuthRotation, IsATurnAboutTheVerticalAxis) {
    AtomicSlider dial(0.0f);
    const AzimuthRotationClient client(&dial);
    for (float value = -180.0f; value <= 180.0f; value += 7.5f) {
        dial.setValue(value);
        const double theta = static_cast<double>(value) * std::numbers::pi / 180.0;
        const double c = std::cos(theta);
        const double s = std::sin(theta);
        const double expected[]{c, 0, s, 0, 0, 1, 0, 0, -s, 0, c, 0, 0, 0, 0, 1};
        const HeadRotationMatrix seen = client.getRotation();
        for (std::size_t i = 0; i < seen.size(); ++i)
            EXPECT_NEAR(seen[i], expected[i], 3e-7) << value << " element " << i; // the angle is a float
    }
}

// Property: a value of 90 turns every source by 90 degrees, to the left for the listener; any other likewise.
TEST(AzimuthRotation, TurnsEverySourceAgainstTheHead) {
    std::mt19937 random(3);
    std::uniform_real_distribution<float> angles(-179.0f, 179.0f);
    std::uniform_real_distribution<float> elevations(-60.0f, 60.0f);
    for (int round = 0; round < 500; ++round) {
        const float value = round == 0 ? 90.0f : angles(random);
        const float azimuth = round == 0 ? 0.0f : angles(random);
        const float elevation = round == 0 ? 0.0f : elevations(random);
        AtomicSlider dial(value);
        SpatialPosition position(elevation, azimuth, 1.5f);
        position.rotate(AzimuthRotationClient(&dial).getRotation());
        const float difference = normalised(position.azimuth - normalised(azimuth - value));
        // a thousandth of the depth counts as straight aside, and the elevation has the same guard
        EXPECT_NEAR(difference, 0.0f, 0.1f) << azimuth << " turned by " << value;
        EXPECT_NEAR(position.elevation, elevation, 0.1f);
        EXPECT_NEAR(position.distance, 1.5f, 1e-5f);
    }
}

class HeadRotationSource : public ::testing::Test {
protected:
    using Set = HeadRotationSupported<ParameterSet>;

    AtomicSlider dial{0.0f};
    test::StandInTracker* link = new test::StandInTracker;
    Set set{std::make_unique<orvane::ParameterSet>(), &dial,
            std::unique_ptr<OrvaneIPC::IOrvaneParameterClient>(link)};
    const orvane::ISpatialParameterSetView& view = set;
};

TEST_F(HeadRotationSource, IsTheDialWhileTheLinkIsInactive) {
    EXPECT_TRUE(sameBytes(view.getHeadRotation(), orvane::identityRotation));
    dial.setValue(90.0f);
    EXPECT_TRUE(sameBytes(view.getHeadRotation(), AzimuthRotationClient(&dial).getRotation()));
    set.setDistance(1.5f, false);
    EXPECT_NEAR(sourcePosition(view).azimuth, -90.0f, 1e-4);
}

TEST_F(HeadRotationSource, IsTheLinkWhileThatIsActiveAndChangesAtTheNextQuery) {
    dial.setValue(90.0f);
    link->active = true;
    EXPECT_TRUE(sameBytes(view.getHeadRotation(), link->matrix)) << "unchanged, translation included";
    link->matrix[0] = 0.25f;
    EXPECT_TRUE(sameBytes(view.getHeadRotation(), link->matrix));
    link->active = false;
    EXPECT_TRUE(sameBytes(view.getHeadRotation(), AzimuthRotationClient(&dial).getRotation()));
}

/// What anybody may have written into the segment, element by element; those of column 3 are never read.
TEST_F(HeadRotationSource, IsTheDialWhereTheLinksMatrixCannotTurnTheScene) {
    dial.setValue(90.0f);
    link->active = true;
    const HeadRotationMatrix sound = link->matrix;
    for (const float fault :
         {std::nanf(""), -std::nanf(""), HUGE_VALF, -HUGE_VALF, 1000.1f, -1000.1f, -3e38f})
        for (std::size_t element = 0; element < sound.size(); ++element) {
            link->matrix = sound;
            link->matrix[element] = fault;
            const HeadRotationMatrix expected =
                element % 4 == 3 ? link->matrix : AzimuthRotationClient(&dial).getRotation();
            EXPECT_TRUE(sameBytes(view.getHeadRotation(), expected)) << fault << " at " << element;
        }
    link->matrix = sound;
    EXPECT_TRUE(sameBytes(view.getHeadRotation(), sound)) << "and followed again once it can";
}

// Property: whatever is followed leaves every point a number.
TEST(TrackedPositions, AreNumbersForEveryMatrixThatIsFollowed) {
    std::mt19937 random(5);
    constexpr std::array values{0.0f, -0.0f, 1.0f, -1.0f, 1000.0f, -1000.0f, 1e-38f, 1e-45f, 0.5f};
    for (int round = 0; round < 20000; ++round) {
        HeadRotationMatrix matrix{};
        for (float& element : matrix)
            element = values[random() % values.size()];
        ASSERT_TRUE(orvane::canTurnTheScene(matrix));
        SpatialPosition position(10.0f, 20.0f, 50.0f);
        position.rotate(matrix);
        ASSERT_TRUE(position.azimuth >= -180.0f && position.azimuth <= 180.0f) << position.azimuth;
        ASSERT_TRUE(position.elevation >= -90.0f && position.elevation <= 90.0f) << position.elevation;
        ASSERT_TRUE(position.distance >= 0.0f && position.distance < 1e6f) << position.distance;
    }
}

TEST_F(HeadRotationSource, ReachesEveryLoudspeakersView) {
    const SpeakerParameterSetView speaker(SpatialPosition(0.0f, 30.0f, 1.5f), &set);
    dial.setValue(90.0f);
    EXPECT_NEAR(sourcePosition(speaker).azimuth, -60.0f, 1e-3);
    link->active = true;
    link->matrix[12] = 0.0f;
    EXPECT_NEAR(sourcePosition(speaker).azimuth, 120.0f, 1e-3);
}

TEST_F(HeadRotationSource, LeavesTheRestOfTheSetAsItWas) {
    set.setClarity(0.5f, false);
    EXPECT_EQ(set.getClarity(), 0.5f);
    EXPECT_EQ(set.getDistance(), 3.0f);
    EXPECT_EQ(set.createReloadParameterSet()->roomId(), 5u);
}

TEST_F(HeadRotationSource, IsChosenWithoutAllocationOrLock) {
    dial.setValue(33.0f);
    const test::RealtimeScope scope;
    const HeadRotationMatrix fromDial = view.getHeadRotation();
    link->active = true;
    const HeadRotationMatrix fromLink = view.getHeadRotation();
    EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
    EXPECT_NE(fromDial[0], fromLink[0]);
}

// Each query sees one value of the dial: the matrix stays a rotation while another thread turns it.
TEST_F(HeadRotationSource, StaysARotationWhileTheDialIsTurnedOnAnotherThread) {
    std::atomic<bool> running{true};
    std::atomic<int> turns{0};
    std::thread turner([&] {
        for (int i = 0; running; ++i) {
            dial.setValue(static_cast<float>(i % 360 - 180));
            turns.fetch_add(1);
        }
    });
    double worst = 0.0;
    for (int query = 0; query < 2000 || turns < 100; ++query) {
        const HeadRotationMatrix m = view.getHeadRotation();
        worst = std::max(worst, std::abs(static_cast<double>(m[0]) * static_cast<double>(m[10]) -
                                         static_cast<double>(m[2]) * static_cast<double>(m[8]) - 1.0));
        worst = std::max(worst, static_cast<double>(std::abs(m[2] + m[8])));
    }
    running = false;
    turner.join();
    EXPECT_LT(worst, 1e-6); // roundings of float sines
}

/// The same over a real segment of the machine.
class HeadRotationOverTheLink : public ::testing::Test {
protected:
    using Set = HeadRotationSupported<ParameterSet>;

    Set makeSet() {
        return {std::make_unique<orvane::ParameterSet>(), &dial,
                OrvaneIPC::OrvaneParameterFactory().createClient()};
    }

    AtomicSlider dial{45.0f};
    const AzimuthRotationClient dialAlone{&dial};
};

TEST_F(HeadRotationOverTheLink, FollowsTheRecordFromTheNextQueryOn) {
    const HeadRotationMatrix tracked{0, 0, -1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1};
    const auto server = OrvaneIPC::OrvaneParameterFactory().createServer();
    const Set set = makeSet();
    server->getHeadRotationServer()->setRotation(tracked);
    EXPECT_TRUE(sameBytes(set.getHeadRotation(), dialAlone.getRotation()));
    server->getHeadRotationServer()->setActive(true);
    EXPECT_TRUE(sameBytes(set.getHeadRotation(), tracked));
    server->getHeadRotationServer()->setActive(false);
    EXPECT_TRUE(sameBytes(set.getHeadRotation(), dialAlone.getRotation()));
}

TEST_F(HeadRotationOverTheLink, IsTheDialForLifeWhenThereWasNoServerAtTheStart) {
    OrvaneIPC::OrvaneParameterFactory().createServer().reset(); // takes the segment's name away
    const Set set = makeSet();
    const auto server = OrvaneIPC::OrvaneParameterFactory().createServer();
    server->getHeadRotationServer()->setActive(true);
    EXPECT_TRUE(sameBytes(set.getHeadRotation(), dialAlone.getRotation()));
    dial.setValue(-90.0f);
    EXPECT_TRUE(sameBytes(set.getHeadRotation(), dialAlone.getRotation()));
}

} // namespace
