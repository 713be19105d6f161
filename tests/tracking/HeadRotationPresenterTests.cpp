// SPDX-License-Identifier: GPL-3.0-or-later
// What the dial shows and what the value holds while a tracker comes and goes. Expected angles follow from the frame:
// a head that turns to the right lets the sources go to the left.
#include "tracking/HeadRotationPresenter.h"

#include "ipc/IOrvaneParameterClient.h"
#include "parameters/core/SliderValue.h"
#include "support/RecordingViews.h"
#include "tracking/AzimuthRotationClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <memory>

namespace {

using namespace orvane::kestrum::core;
using orvane::HeadRotationMatrix;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using AtomicSlider = internal::SliderValue<std::atomic<float>>;

/// The matrix that the dial itself would make of an angle.
HeadRotationMatrix turnOf(float degrees) {
    AtomicSlider dial(degrees);
    return AzimuthRotationClient(&dial).getRotation();
}

/// A processor with a tracker as the test says.
class Head final : public IHeadRotationAccessor,
                   public OrvaneIPC::IOrvaneParameterClient,
                   public OrvaneIPC::IHeadRotationClient {
public:
    void getHeadRotation(HeadRotationMatrix& out) const override { out = matrix; }
    OrvaneIPC::IOrvaneParameterClient* getParameterClient() const override { return client; }
    bool isConnected() const noexcept override { return true; }
    OrvaneIPC::IHeadRotationClient& getHeadRotationClient() noexcept override { return *this; }
    bool isActive() const noexcept override { return tracking; }
    HeadRotationMatrix getRotation() const noexcept override { return matrix; }

    OrvaneIPC::IOrvaneParameterClient* client = this;
    bool tracking = false;
    HeadRotationMatrix matrix = orvane::identityRotation;
};

class Dial : public ::testing::Test {
protected:
    std::unique_ptr<HeadRotationPresenter> makePresenter() {
        timer = new test::HandTimer(log);
        slider = new test::RecordingSlider("dial", log);
        return std::make_unique<HeadRotationPresenter>(&head, std::unique_ptr<ITimer>(timer), &value,
                                                       std::unique_ptr<ISlider>(slider));
    }

    test::ViewLog log;
    Head head;
    AtomicSlider value{30.0f};
    test::HandTimer* timer = nullptr;
    test::RecordingSlider* slider = nullptr;
    std::unique_ptr<HeadRotationPresenter> presenter = makePresenter();
};

TEST_F(Dial, ShowsTheValueFromTheStart) { EXPECT_THAT(log.take(), ElementsAre("dial = 30")); }

TEST_F(Dial, AndValueFollowEachOtherWithoutATracker) {
    log.take();
    value.setValue(-45.0f);
    EXPECT_THAT(log.take(), ElementsAre("dial = -45"));
    slider->move(60.0f);
    EXPECT_EQ(value.getValue(), 60.0f);
}

TEST_F(Dial, IsLeftAloneByTicksWithoutATracker) {
    log.take();
    for (int i = 0; i < 100; ++i)
        timer->tick();
    EXPECT_THAT(log.take(), IsEmpty());
    EXPECT_EQ(value.getValue(), 30.0f);
}

TEST_F(Dial, IsLeftAloneByTicksWithoutALink) {
    head.client = nullptr;
    log.take();
    timer->tick();
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(Dial, IsOnlyDisabledAtTheTickThatFindsTheTracker) {
    log.take();
    head.tracking = true;
    head.matrix = turnOf(90.0f);
    timer->tick();
    EXPECT_THAT(log.take(), ElementsAre("dial off"));
    EXPECT_EQ(value.getValue(), 30.0f);
}

TEST_F(Dial, StandsAtZeroForAHeadThatLooksAhead) {
    head.tracking = true;
    timer->tick();
    timer->tick();
    EXPECT_EQ(slider->getValue(), 0.0f);
    EXPECT_EQ(value.getValue(), 0.0f);
    EXPECT_FALSE(std::signbit(value.getValue())) << "shown and stored as -0 otherwise";
}

// Analytic: the matrix that the dial makes of an angle is shown as that angle, within the rounding of float sines and
// the thousandth that counts as straight aside.
TEST_F(Dial, ShowsTheAngleOfWhichTheDialWouldMakeTheTrackedMatrix) {
    head.tracking = true;
    timer->tick();
    for (const float degrees : {90.0f, -90.0f, 12.0f, -179.0f, 150.0f}) {
        head.matrix = turnOf(degrees);
        timer->tick();
        EXPECT_NEAR(slider->getValue(), degrees, 0.01f);
        EXPECT_EQ(value.getValue(), slider->getValue());
    }
}

// Deliberate oddity: what is followed is a point one degree above straight ahead. A head that leans onto a shoulder brings
// that degree to the side, and so onto the dial; one that looks up or down leaves it in the middle.
TEST_F(Dial, FollowsAPointOneDegreeAboveStraightAhead) {
    head.tracking = true;
    timer->tick();
    const auto shown = [&](const HeadRotationMatrix& matrix) {
        head.matrix = matrix;
        timer->tick();
        return slider->getValue();
    };
    const HeadRotationMatrix leaning{0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    EXPECT_NEAR(std::abs(shown(leaning)), 1.0f, 1e-3f);
    const float c = std::cos(0.7f), s = std::sin(0.7f);
    EXPECT_NEAR(shown({1, 0, 0, 0, 0, c, s, 0, 0, -s, c, 0, 0, 0, 0, 1}), 0.0f, 1e-3f);
}

TEST_F(Dial, DoesNotReachTheValueWhileTheTrackerTurnsTheHead) {
    head.tracking = true;
    timer->tick();
    slider->move(77.0f); // a drag that was under way
    EXPECT_EQ(value.getValue(), 30.0f);
}

TEST_F(Dial, ShowsAValueOfTheHostUntilTheNextTick) {
    head.tracking = true;
    head.matrix = turnOf(20.0f);
    timer->tick();
    timer->tick();
    value.setValue(-100.0f);
    EXPECT_EQ(slider->getValue(), -100.0f);
    timer->tick();
    EXPECT_NEAR(slider->getValue(), 20.0f, 0.01f);
}

TEST_F(Dial, GoesBackToZeroAndIsEnabledWhenTrackingEnds) {
    head.tracking = true;
    head.matrix = turnOf(20.0f);
    timer->tick();
    timer->tick();
    log.take();
    head.tracking = false;
    timer->tick();
    const auto told = log.take();
    ASSERT_GE(told.size(), 2u);
    EXPECT_EQ(told[0], "dial on");
    EXPECT_EQ(told[1], "dial = 0");
    EXPECT_EQ(slider->getValue(), 0.0f);
    EXPECT_EQ(value.getValue(), 0.0f);
    slider->move(15.0f);
    EXPECT_EQ(value.getValue(), 15.0f);
}

TEST_F(Dial, KeepsTheLastMirroredAngleWhenTheEditorClosesWhileTrackingGoesOn) {
    head.tracking = true;
    head.matrix = turnOf(20.0f);
    timer->tick();
    timer->tick();
    const float mirrored = value.getValue();
    presenter.reset();
    head.tracking = false;
    EXPECT_EQ(value.getValue(), mirrored);
    presenter = makePresenter();
    log.take();
    timer->tick();
    EXPECT_THAT(log.take(), IsEmpty()) << "only an end that has been seen resets the dial";
    EXPECT_EQ(value.getValue(), mirrored);
}

TEST_F(Dial, StartsAnewWithEveryEditor) {
    head.tracking = true;
    timer->tick();
    presenter.reset();
    presenter = makePresenter();
    log.take();
    timer->tick();
    EXPECT_THAT(log.take(), ElementsAre("dial off"));
}

TEST_F(Dial, IsLetGoBeforeItsTimerAndNobodyListensAnyMore) {
    log.take();
    presenter.reset();
    EXPECT_THAT(log.take(), ElementsAre("dial gone", "timer gone"));
    value.setValue(1.0f);
    EXPECT_THAT(log.take(), IsEmpty());
}

} // namespace
