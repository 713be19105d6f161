// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/Widgets.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

using namespace orvane::kestrum::pictures;

/// Of a pixel's middle about the picture's, 0 up, clockwise, 0 to 360.
double angleOf(const Picture& picture, int x, int y) {
    const double dx = x + 0.5 - picture.width / 2.0, dy = y + 0.5 - picture.height / 2.0;
    const double degrees = std::atan2(dx, -dy) * 180 / std::numbers::pi;
    return degrees < 0 ? degrees + 360 : degrees;
}

// The widgets erase from a dial's start on; what lay before it would always shine.
TEST(ADialsRing, IsEmptyBetweenItsEndAndItsStart) {
    const Picture ring = dialRing(144, 225, 495);
    for (int y = 0; y < 144; ++y)
        for (int x = 0; x < 144; ++x)
            if (const double angle = angleOf(ring, x, y); angle > 137 && angle < 223) {
                ASSERT_LT(ring.at(x, y).alpha, 0.01f) << x << ", " << y;
            }
}

TEST(ADialsRing, IsLitAllAlongBetweenThem) {
    const Picture ring = dialRing(144, 225, 495);
    for (int degrees = 228; degrees <= 492; degrees += 3) {
        const double angle = degrees * std::numbers::pi / 180, radius = 2 * dialRingRadius;
        const auto x = static_cast<int>(72 + radius * std::sin(angle)),
                   y = static_cast<int>(72 - radius * std::cos(angle));
        ASSERT_GT(ring.at(x, y).alpha, 0.95f) << degrees;
    }
}

// The widget turns the whole knob: turned by a quarter it has to look the same but for the mark. The tolerance is a step of
// the drawing library's samples within a pixel, which differ along and across.
TEST(ADialsPointer, IsAlikeAllRoundButForItsMark) {
    const Picture knob = dialPointer(144);
    for (int y = 0; y < 144; ++y)
        for (int x = 0; x < 144; ++x) {
            const int turnedX = 143 - y, turnedY = x; // by a quarter, clockwise
            const auto marked = [&](int px, int py) { return std::abs(px - 71.5) < 20 && py < 72; };
            if (marked(x, y) || marked(turnedX, turnedY))
                continue;
            ASSERT_NEAR(knob.at(x, y).green, knob.at(turnedX, turnedY).green, 0.07f) << x << ", " << y;
            ASSERT_NEAR(knob.at(x, y).alpha, knob.at(turnedX, turnedY).alpha, 0.07f) << x << ", " << y;
        }
}

TEST(ADialsPointer, HasItsMarkAtTheTop) {
    const Picture knob = dialPointer(144);
    EXPECT_NEAR(knob.at(72, 40).green, palette::lit.green, 0.1f);
    EXPECT_LT(knob.at(72, 104).green, 0.4f);
}

// At the ends of its range the widget's edge passes at a quarter of the thumb's picture.
TEST(ASlidersThumb, HasItsBodyWithinAQuarterOfThePictureFromItsMiddle) {
    for (const int side : {36, 48, 60}) {
        const Picture thumb = sliderThumb(side);
        for (int x = 0; x < side; ++x) {
            const bool inside = x >= side / 4 && x < side - side / 4;
            if (!inside) {
                ASSERT_LT(thumb.at(x, side / 2).red, 0.1f) << side << ", " << x; // at most its dark shadow
            }
        }
        EXPECT_GT(thumb.at(side / 2, side / 2).alpha, 0.99f);
    }
}

TEST(ASlidersTrack, LiesInTheMiddleAcross) {
    const Picture track = sliderTrack(312, 48, 48);
    for (int y = 0; y < 24; ++y)
        ASSERT_NEAR(track.at(156, y).alpha, track.at(156, 47 - y).alpha, 0.01f);
    EXPECT_GT(track.at(156, 24).alpha, 0.95f);
    EXPECT_LT(track.at(2, 24).alpha, 0.5f) << "beyond where the thumb's middle goes";
}

} // namespace
