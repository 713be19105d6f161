// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/ProductLogo.h"

#include "pictures/Outlines.h"

namespace orvane::kestrum::pictures {

namespace {

// The button's bounds in the editor's main component.
constexpr double left = 892, top = 10, width = 180, height = 70;

/// Waves that leave a head for one side, each a feather of a spread wing.
void drawEmblem(Canvas& canvas, double x, double y) {
    for (int feather = 0; feather < 4; ++feather) {
        const double radius = 6.5 + 6 * feather;
        const Path wave = arc(x, y, radius, -52 + 6 * feather, 58 - 3 * feather);
        canvas.stroke(wave, 2.6 - 0.3 * feather,
                      palette::lit.withAlpha(1.0f - 0.2f * static_cast<float>(feather)));
    }
    canvas.fill(circle(x, y, 2.8), palette::hot);
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
    drawEmblem(canvas, left + 22, top + height - 18);
}

} // namespace orvane::kestrum::pictures
