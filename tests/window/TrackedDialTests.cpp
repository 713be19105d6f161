// SPDX-License-Identifier: GPL-3.0-or-later
// The dial while a tracker drives it over the rotation segment. Expected: the head's angle to
// the right, and the zero at which the dial is given back.
#include "PaintCount.h"
#include "Places.h"
#include "Views.h"
#include "ipc/OrvaneParameterServer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>

namespace {

using namespace orvane::kestrum::host;
using namespace orvane::kestrum::host::test;

double degreesOf(const PluginInstance& plugin) { return normalized(plugin, "Head Rotation") * 360 - 180; }

class TrackedDial : public WindowTest {
protected:
    OrvaneIPC::OrvaneParameterServer tracker; ///< Before any instance, which looks for it when it is made.
};

TEST_F(TrackedDial, LooksAsItDidWhenItWasLastLookedAt) {
    auto& opened = open();
    expectLooksLike(takeTrackedDial(opened, *tracker.getHeadRotationServer(), 40), "tracked-dial");
}

TEST_F(TrackedDial, ShowsTheHeadTakesNoHandAndIsGivenBackAtZero) {
    auto& opened = open();
    setAndSend(opened.plugin(), "rotation", "100");
    auto& head = *tracker.getHeadRotationServer();
    for (const float degrees : {40.0f, -75.0f, 90.0f}) {
        takeTrackedDial(opened, head, degrees);
        EXPECT_NEAR(degreesOf(opened.plugin()), 0, 0.5) << "given back";
    }
    head.setRotation(turnedBy(40));
    head.setActive(true);
    EXPECT_TRUE(opened.waitUntil([&] { return std::abs(degreesOf(opened.plugin()) - 40) < 0.5; }));
    opened.act([](Person& person) {
        const Point middle = headRotation.middle();
        person.drag(middle, {middle.x, middle.y - 60});
        person.doubleClick(middle);
    });
    EXPECT_NEAR(degreesOf(opened.plugin()), 40, 0.5);
    head.setActive(false);
    EXPECT_TRUE(opened.waitUntil([&] { return std::abs(degreesOf(opened.plugin())) < 0.5; }));
    opened.act([](Person& person) {
        const Point middle = headRotation.middle();
        person.drag(middle, {middle.x, middle.y - 60});
    });
    EXPECT_GT(degreesOf(opened.plugin()), 5);
}

TEST_F(TrackedDial, PaintsNothingForFiveSecondsWhileTheTrackerIsThereButInactive) {
    auto& opened = open();
    opened.look();
    PaintCount paints;
    opened.window().pumpFor(std::chrono::seconds(5));
    EXPECT_EQ(paints.sinceLastCall(), 0);
    takeTrackedDial(opened, *tracker.getHeadRotationServer(), 40);
    EXPECT_GT(paints.sinceLastCall(), 0) << "the window had a link all the time";
}

} // namespace
