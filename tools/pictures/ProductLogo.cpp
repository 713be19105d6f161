// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/ProductLogo.h"

#include "pictures/Outlines.h"

namespace orvane::kestrum::pictures {

namespace {

// The button's bounds in the editor's main component.
constexpr double left = 892, top = 10, width = 180, height = 70;

/// A listener amid five loudspeakers, at their angles.
void drawEmblem(Canvas& canvas, double x, double y) {
    constexpr double radius = 15.5, halfSpan = 10.5;
    canvas.glow(circle(x, y, radius + 3), 4, grey(0, 0.55f));
    canvas.stroke(circle(x, y, 8.6), 1, palette::lit.withAlpha(0.45f));
    for (const double azimuth : {-110.0, -30.0, 0.0, 30.0, 110.0})
        canvas.stroke(arc(x, y, radius, azimuth - halfSpan, azimuth + halfSpan), 3.4, palette::lit, false);
    canvas.fill(circle(x, y, 3.2), palette::hot);
}

} // namespace

void drawProductLogo(Canvas& canvas, const Font& medium, const Font& regular) {
    const double right = left + width - 8, baseline = top + 53;
    const Path product = medium.text("KESTRUM", right, baseline, 23, Align::right, 0.12);
    const Path maker = regular.text("ORVANE", right, baseline - 24, 10, Align::right, 0.62);
    canvas.glow(product, 5, grey(0, 0.6f));
    canvas.glow(maker, 3, grey(0, 0.6f));
    canvas.fill(product, along(0, baseline - 17, 0, baseline,
                               {{0, fromBytes(240, 252, 251)}, {1, fromBytes(168, 214, 211)}}));
    canvas.fill(maker, palette::lit);
    drawEmblem(canvas, left + 23, top + height / 2 + 3.5);
}

} // namespace orvane::kestrum::pictures
