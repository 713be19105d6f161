// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/Diagram.h"

#include "pictures/Outlines.h"

#include <cmath>
#include <numbers>

namespace orvane::kestrum::pictures {

Picture diagram(const core::LayoutRow& layout, const DiagramFonts& fonts) {
    Picture picture(diagramWidth, diagramHeight);
    Canvas canvas(picture);
    canvas.stroke(ellipse(540, 332, 430, 140), 1, palette::lit.withAlpha(0.5f));
    canvas.fill(circle(540, 320, 18), palette::label);
    int channel = 0;
    for (const core::SpeakerRow& speaker : layout.speakers) {
        ++channel;
        const double azimuth = speaker.azimuth * std::numbers::pi / 180,
                     elevation = speaker.elevation * std::numbers::pi / 180;
        const double radius = speaker.lowFrequency ? 0.66 : std::cos(elevation);
        const double x = 540 + 430 * radius * std::sin(azimuth);
        const double y = 332 - 140 * radius * std::cos(azimuth) - 205 * std::pow(std::sin(elevation), 0.41);
        canvas.fill(rectangle(x - 14, y - 32, 28, 34, 4), palette::glass);
        canvas.stroke(rectangle(x - 14, y - 32, 28, 34, 4), 1, palette::lit);
        canvas.fill(fonts.medium.text(std::to_string(channel), x, y - 10, 14, Align::middle), palette::lit);
    }
    return picture;
}

} // namespace orvane::kestrum::pictures
