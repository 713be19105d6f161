// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/ListenerDrawing.h"

#include "pictures/Outlines.h"
#include "pictures/Stage.h"

namespace orvane::kestrum::pictures {

namespace {

constexpr double x = stage::middle.x;
constexpr double floorY = stage::middle.y;
constexpr double headY = 276, headHalfWidth = 15.5, headHalfHeight = 19;

/// Neck and shoulders, the floor line cutting them.
Path shoulders() {
    return [](cairo_t* context) {
        cairo_new_sub_path(context);
        cairo_move_to(context, x - 7, headY + 12);
        cairo_curve_to(context, x - 7, headY + 26, x - 12, headY + 27, x - 24, headY + 31);
        cairo_curve_to(context, x - 40, headY + 36, x - 45, headY + 46, x - 46, floorY + 4);
        cairo_curve_to(context, x - 30, floorY + 13, x + 30, floorY + 13, x + 46, floorY + 4);
        cairo_curve_to(context, x + 45, headY + 46, x + 40, headY + 36, x + 24, headY + 31);
        cairo_curve_to(context, x + 12, headY + 27, x + 7, headY + 26, x + 7, headY + 12);
        cairo_close_path(context);
    };
}

} // namespace

void drawListener(Canvas& canvas) {
    const Path body = shoulders(), head = ellipse(x, headY, headHalfWidth, headHalfHeight);
    canvas.glow(ellipse(x, floorY + 5, 50, 14), 4, grey(0, 0.65f));
    const Shade cloth =
        along(x, headY + 20, x, floorY + 10,
              {{0, fromBytes(52, 76, 81)}, {0.35, fromBytes(26, 42, 46)}, {1, fromBytes(9, 17, 20)}});
    canvas.fill(body, cloth);
    canvas.stroke(body, 0.8, palette::lit.withAlpha(0.38f));
    canvas.glow(ellipse(x, headY + 20, 12, 5), 2.5, grey(0, 0.5f));
    canvas.fill(
        head,
        around(x, headY - 9, 30,
               {{0, fromBytes(74, 102, 107)}, {0.5, fromBytes(40, 60, 65)}, {1, fromBytes(17, 28, 32)}}));
    canvas.stroke(head, 0.8, palette::lit.withAlpha(0.38f));

    // Headphones: band over the crown, a cup on each ear.
    const Path band = ellipticArc(x, headY + 1, headHalfWidth + 3.6, headHalfHeight + 4, -84, 84);
    canvas.strokeGlow(band, 3, 1.5, grey(0, 0.5f));
    canvas.stroke(band, 3.2, fromBytes(20, 34, 38));
    canvas.stroke(band, 1.1, palette::lit.withAlpha(0.85f));
    for (const double side : {-1.0, 1.0}) {
        const double left = side < 0 ? x - headHalfWidth - 7.5 : x + headHalfWidth - 0.5;
        const Path cup = rectangle(left, headY - 7.5, 8, 17, 3.6);
        canvas.fill(cup,
                    along(left, 0, left + 8, 0, {{0, fromBytes(36, 56, 60)}, {1, fromBytes(14, 24, 27)}}));
        canvas.stroke(cup, 0.9, palette::lit.withAlpha(0.9f));
        canvas.strokeGlow(cup, 2, 2.5, palette::lit.withAlpha(0.30f));
    }
}

} // namespace orvane::kestrum::pictures
