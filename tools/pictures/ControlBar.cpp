// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/ControlBar.h"

#include "pictures/Outlines.h"
#include "pictures/Widgets.h"

#include <cmath>
#include <numbers>
#include <tuple>

namespace orvane::kestrum::pictures {

namespace {

constexpr double barTop = 531;
constexpr double windowWidth = 1080;
constexpr double windowHeight = 636;

struct Bounds {
    double x, y, width, height;
};

// The widgets' bounds in the editor's main component.
constexpr Bounds speakerSetup{12, 571, 107, 24};
constexpr Bounds scene{282, 571, 107, 24};
constexpr Bounds scenePrevious{391, 570, 24, 24};
constexpr Bounds sceneNext{415, 570, 24, 24};
constexpr Bounds ambience{460, 569, 156, 24};
constexpr Bounds focus{640, 569, 156, 24};
constexpr Bounds headRotation{864, 558, 72, 72};
constexpr Bounds headRotationText{822, 573, 36, 18};
constexpr Bounds masterGain{990, 558, 72, 72};
constexpr Bounds masterGainText{952, 573, 36, 18};
constexpr Bounds ambienceText{577, 549, 36, 18};
constexpr Bounds focusText{757, 549, 36, 18};

void drawPanel(Canvas& canvas) {
    const Path panel = rectangle(-2, barTop, windowWidth + 4, windowHeight - barTop + 2);
    canvas.glow(rectangle(-20, barTop, windowWidth + 40, 40), 8, grey(0, 0.55f));
    canvas.fill(
        panel, along(0, barTop, 0, windowHeight,
                     {{0, fromBytes(24, 36, 41)}, {0.08, fromBytes(18, 28, 32)}, {1, fromBytes(8, 14, 17)}}));
    canvas.fill(rectangle(0, barTop, windowWidth, 0.5), along(0, 0, windowWidth, 0,
                                                              {{0, palette::lit.withAlpha(0.12f)},
                                                               {0.5, palette::lit.withAlpha(0.55f)},
                                                               {1, palette::lit.withAlpha(0.12f)}}));
    canvas.fill(rectangle(0, barTop + 0.5, windowWidth, 0.5), grey(1, 0.06f));
}

void drawSeparator(Canvas& canvas, double x) {
    const auto fading = [](float level, float alpha) {
        return along(
            0, barTop + 12, 0, windowHeight - 10,
            {{0, grey(level, 0)}, {0.3, grey(level, alpha)}, {0.7, grey(level, alpha)}, {1, grey(level, 0)}});
    };
    canvas.fill(rectangle(x, barTop + 12, 0.5, 83), fading(0, 0.7f));
    canvas.fill(rectangle(x + 0.5, barTop + 12, 0.5, 83), fading(1, 0.09f));
}

void drawLabel(Canvas& canvas, const Font& font, const char* text, double x, double baseline, Align align) {
    const Path label = font.text(text, x, baseline, 10, align, 0.1);
    canvas.glow(label, 0.6, grey(0, 0.7f));
    canvas.fill(label, palette::label);
}

/// A hollow with a light edge below, as if pressed into the panel.
void drawHollow(Canvas& canvas, const Path& outline, const Shade& ground) {
    canvas.fill(outline, ground);
    canvas.innerShadow(outline, 1, 1.2, grey(0, 0.8f));
}

void drawBox(Canvas& canvas, const Bounds& bounds) {
    const Path body = rectangle(bounds.x, bounds.y, bounds.width, bounds.height, 4);
    canvas.stroke(rectangle(bounds.x, bounds.y + 0.5, bounds.width, bounds.height, 4), 1, grey(1, 0.07f));
    drawHollow(canvas, body,
               along(0, bounds.y, 0, bounds.y + bounds.height,
                     {{0, fromBytes(3, 26, 30)}, {1, fromBytes(5, 43, 47)}}));
    canvas.stroke(rectangle(bounds.x + 0.25, bounds.y + 0.25, bounds.width - 0.5, bounds.height - 0.5, 3.75),
                  0.5, palette::lit.withAlpha(0.4f));
}

void drawTextWell(Canvas& canvas, const Bounds& bounds) {
    const Path well = rectangle(bounds.x, bounds.y, bounds.width, bounds.height, 3);
    canvas.stroke(rectangle(bounds.x, bounds.y + 0.5, bounds.width, bounds.height, 3), 1, grey(1, 0.05f));
    drawHollow(canvas, well, palette::bed.withAlpha(0.85f));
}

void drawGroove(Canvas& canvas, const Bounds& bounds) {
    constexpr double inset = 6, thickness = 4.4;
    const double y = bounds.y + bounds.height / 2, left = bounds.x + inset,
                 right = bounds.x + bounds.width - inset;
    for (int tick = 0; tick <= 10; ++tick) {
        const double x = left + (right - left) * tick / 10;
        const bool strong = tick % 5 == 0;
        canvas.fill(rectangle(x - 0.25, y + 7.5, 0.5, strong ? 4.5 : 2.5),
                    strong ? palette::label.withAlpha(0.75f) : palette::dim);
    }
    const Path groove = rectangle(left - thickness / 2, y - thickness / 2, right - left + thickness,
                                  thickness, thickness / 2);
    canvas.stroke(groove, 1.2, grey(1, 0.055f));
    drawHollow(canvas, groove, palette::bed);
}

struct DialScale {
    double from, to; ///< Degrees of the ends of the ring, 0 up.
    int steps;       ///< Ticks less one.
    double strong;   ///< Degrees of the tick that stands out.
};

void drawDialBed(Canvas& canvas, const Bounds& bounds, const DialScale& scale) {
    const double x = bounds.x + bounds.width / 2, y = bounds.y + bounds.height / 2;
    canvas.glow(circle(x, y + 1.5, 30), 3.5, grey(0, 0.5f));
    const Path groove = arc(x, y, dialRingRadius, scale.from, scale.to);
    canvas.stroke(groove, 6.2, grey(1, 0.06f), false);
    canvas.stroke(groove, 5.2, palette::bed, false);
    const auto tick = [&](double degrees, double length, double width, const Colour& colour) {
        const double angle = degrees * std::numbers::pi / 180, sine = std::sin(angle),
                     cosine = std::cos(angle);
        constexpr double inner = 34.6;
        canvas.stroke(line(x + inner * sine, y - inner * cosine, x + (inner + length) * sine,
                           y - (inner + length) * cosine),
                      width, colour, false);
    };
    for (int step = 0; step <= scale.steps; ++step)
        tick(scale.from + (scale.to - scale.from) * step / scale.steps, 1.6, 0.6, palette::dim);
    tick(scale.strong, 3, 1, palette::lit.withAlpha(0.9f));
}

/// Pressed into the free part of the panel: the emblem of the product's name, hardly seen.
void drawWatermark(Canvas& canvas) {
    constexpr double x = 196, y = 590, radius = 27;
    for (const auto& [offset, level, alpha] : {std::tuple{0.6, 1.0f, 0.05f}, {0.0, 0.0f, 0.40f}})
        for (const double azimuth : {-110.0, -30.0, 0.0, 30.0, 110.0})
            canvas.stroke(arc(x, y + offset, radius, azimuth - 10, azimuth + 10), 5.5, grey(level, alpha),
                          false);
    canvas.stroke(circle(x, y, 15), 1.2, grey(0, 0.35f));
    canvas.fill(circle(x, y, 5.5), grey(0, 0.35f));
}

} // namespace

void drawControlBar(Canvas& canvas, const Font& font) {
    drawPanel(canvas);
    drawWatermark(canvas);
    for (const double x : {268.0, 449.0, 628.0, 808.0, 944.0})
        drawSeparator(canvas, x);

    constexpr double baseline = 562;
    drawLabel(canvas, font, "SPEAKER SETUP", speakerSetup.x + 1, baseline, Align::left);
    drawLabel(canvas, font, "SCENE", scene.x + 1, baseline, Align::left);
    drawLabel(canvas, font, "AMBIENCE", ambience.x + 4, baseline, Align::left);
    drawLabel(canvas, font, "FOCUS", focus.x + 4, baseline, Align::left);
    drawLabel(canvas, font, "HEAD", headRotationText.x + headRotationText.width / 2, 554, Align::middle);
    drawLabel(canvas, font, "ROTATION", headRotationText.x + headRotationText.width / 2, 566, Align::middle);
    drawLabel(canvas, font, "MASTER", masterGainText.x + masterGainText.width / 2, 566, Align::middle);

    drawBox(canvas, speakerSetup);
    drawBox(canvas, scene);
    for (const Bounds& text : {ambienceText, focusText, headRotationText, masterGainText})
        drawTextWell(canvas, text);
    drawGroove(canvas, ambience);
    drawGroove(canvas, focus);
    drawDialBed(canvas, headRotation, {0, 360, 12, 0});
    // 0 dB lies at four fifths of the range from -96 dB to 24 dB.
    drawDialBed(canvas, masterGain, {220, 493, 10, 220 + 0.8 * 273});
    for (const auto& [bounds, toTheRight] : {std::pair{scenePrevious, false}, {sceneNext, true}})
        canvas.stroke(arrowSymbol(bounds.x, bounds.y, toTheRight), 2, palette::lit.withAlpha(0.85f));
}

} // namespace orvane::kestrum::pictures
