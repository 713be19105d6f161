// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/Diagram.h"

#include "pictures/CabinetDrawing.h"
#include "pictures/ListenerDrawing.h"
#include "pictures/Stage.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace orvane::kestrum::pictures {

namespace {

constexpr double x0 = stage::middle.x, y0 = stage::middle.y;

Path ring(double radius, double rise = 0) {
    return ellipse(x0, y0 - rise, stage::radiusX * radius, stage::radiusY * radius);
}

/// In steps that nobody sees over the dark room: soft light in a transparent picture would make files twice as large.
float stepped(double value, int steps) { return static_cast<float>(std::round(value * steps) / steps); }

Picture emptyFloor() {
    Picture picture(diagramWidth, diagramHeight);
    Canvas canvas(picture);
    // Dark beneath, so that the room behind does not compete.
    constexpr double reach = 1.35;
    canvas.fill(ring(reach), Shade([](double x, double y) {
                    const double place =
                        std::hypot((x - x0) / stage::radiusX, (y - y0) / stage::radiusY) / reach;
                    const double rest = std::clamp(1 - place, 0.0, 1.0),
                                 smooth = rest * rest * (3 - 2 * rest);
                    return fromBytes(2, 9, 11).withAlpha(stepped(0.55 * std::min(1.0, 1.6 * smooth), 64));
                }));
    canvas.fill(ring(1), Shade([](double x, double y) {
                    const double place = std::hypot((x - x0) / stage::radiusX, (y - y0) / stage::radiusY);
                    const double light = 0.13 * std::exp(-6 * place * place) + 0.045 * std::pow(place, 6);
                    return palette::lit.withAlpha(stepped(light, 160));
                }));
    for (const double radius : {1.0 / 3, 2.0 / 3})
        canvas.stroke(ring(radius), 0.7, palette::lit.withAlpha(0.16f));
    for (int degrees = 0; degrees < 360; degrees += 5) {
        const bool strong = degrees % 30 == 0;
        const Point inner = stage::floorAt(degrees, 1.0),
                    outer = stage::floorAt(degrees, strong ? 1.03 : 1.014);
        canvas.stroke(line(inner.x, inner.y, outer.x, outer.y), strong ? 1.1 : 0.7,
                      palette::lit.withAlpha(strong ? 0.55f : 0.28f));
    }
    canvas.strokeGlow(ring(1), 2, 3, palette::lit.withAlpha(0.45f));
    canvas.stroke(ring(1), 1.2, palette::lit.withAlpha(0.65f));
    return picture;
}

void drawHeightRings(Canvas& canvas, const std::vector<StagedSpeaker>& speakers) {
    std::set<float> elevations;
    for (const StagedSpeaker& staged : speakers)
        if (staged.speaker.elevation > 0 && staged.speaker.elevation < 80)
            elevations.insert(staged.speaker.elevation);
    for (const float elevation : elevations) {
        const double radius = stage::radiusOf(elevation);
        canvas.strokeGlow(ring(radius, stage::riseOf(elevation)), 1.5, 2.2, raisedAccent.withAlpha(0.22f));
        canvas.stroke(ring(radius, stage::riseOf(elevation)), 0.8, raisedAccent.withAlpha(0.34f));
    }
}

/// From the listener to where a loudspeaker stands: what makes its azimuth readable.
void drawBearing(Canvas& canvas, const StagedSpeaker& staged) {
    const Colour accent = accentOf(staged.speaker);
    const double share = 0.17;
    const Point from{x0 + (staged.foot.x - x0) * share, y0 + (staged.foot.y - y0) * share};
    canvas.stroke(line(from.x, from.y, staged.foot.x, staged.foot.y), 0.8,
                  along(from.x, from.y, staged.foot.x, staged.foot.y,
                        {{0, accent.withAlpha(0)}, {1, accent.withAlpha(0.42f)}}));
}

void drawStem(Canvas& canvas, const StagedSpeaker& staged) {
    if (staged.speaker.elevation <= 0 || staged.speaker.elevation > 80)
        return;
    canvas.fill(ellipse(staged.foot.x, staged.foot.y, 4, 1.6), raisedAccent.withAlpha(0.65f));
    canvas.stroke(line(staged.foot.x, staged.foot.y, staged.place.x, staged.place.y), 0.9,
                  along(0, staged.place.y, 0, staged.foot.y,
                        {{0, raisedAccent.withAlpha(0.75f)}, {1, raisedAccent.withAlpha(0.25f)}}));
}

void drawLabel(Canvas& canvas, const StagedSpeaker& staged, const Font& font) {
    const Area& area = staged.label;
    const Colour accent = accentOf(staged.speaker);
    const Path plate = rectangle(area.left, area.top, area.width, area.height, area.height / 2);
    canvas.fill(plate, fromBytes(3, 15, 18, 0.86f));
    canvas.stroke(rectangle(area.left + 0.25, area.top + 0.25, area.width - 0.5, area.height - 0.5,
                            area.height / 2 - 0.25),
                  0.6, accent.withAlpha(0.5f));
    const double baseline = area.top + area.height / 2 + labelHeight * 0.36;
    const double numberWidth = font.width(staged.number, labelHeight);
    canvas.fill(font.text(staged.number, area.left + labelPadding, baseline, labelHeight), accent);
    canvas.fill(
        font.text(staged.name, area.left + labelPadding + numberWidth + labelGap, baseline, labelHeight),
        fromBytes(226, 242, 242));
}

} // namespace

Picture diagram(const core::LayoutRow& layout, const Font& font) {
    static const Picture floor = emptyFloor(); // the same for every layout
    Picture picture = floor;
    Canvas canvas(picture);
    std::vector<StagedSpeaker> speakers = staged(layout, font);

    drawHeightRings(canvas, speakers);
    for (const StagedSpeaker& one : speakers)
        drawBearing(canvas, one);
    for (const StagedSpeaker& one : speakers)
        drawStem(canvas, one);

    // The farthest first; the listener among them.
    std::ranges::stable_sort(speakers, {}, [](const StagedSpeaker& one) { return one.foot.y; });
    bool listenerDrawn = false;
    for (const StagedSpeaker& one : speakers) {
        if (!listenerDrawn && one.foot.y >= y0) {
            drawListener(canvas);
            listenerDrawn = true;
        }
        drawCabinet(canvas, one);
    }
    if (!listenerDrawn)
        drawListener(canvas);
    for (const StagedSpeaker& one : speakers)
        drawLabel(canvas, one, font);
    return picture;
}

} // namespace orvane::kestrum::pictures
