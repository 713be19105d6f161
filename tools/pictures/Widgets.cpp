// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/Widgets.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane::kestrum::pictures {

namespace {

constexpr double pixelsPerPoint = 2; ///< Pictures are shown at half their size.
constexpr double dialMiddle = dialSide / 2;

/// A wedge from the middle, wider than the picture.
Path sector(double from, double to) {
    std::vector<Point> corners{{dialMiddle, dialMiddle}};
    constexpr int steps = 60;
    for (int i = 0; i <= steps; ++i) {
        const double angle = (from + (to - from) * i / steps) * std::numbers::pi / 180;
        corners.push_back({dialMiddle + dialSide * std::sin(angle), dialMiddle - dialSide * std::cos(angle)});
    }
    return polygon(std::move(corners));
}

} // namespace

Picture dialPointer(int side) {
    Picture picture(side, side);
    Canvas canvas(picture, side / dialSide);
    constexpr double radius = 24;
    const Path body = circle(dialMiddle, dialMiddle, radius);
    canvas.glow(circle(dialMiddle, dialMiddle, radius + 0.5), 1.8, grey(0, 0.75f));
    canvas.fill(body, around(dialMiddle, dialMiddle, radius,
                             {{0.0, fromBytes(44, 58, 62)},
                              {0.70, fromBytes(33, 45, 49)},
                              {0.80, fromBytes(22, 31, 34)},
                              {0.86, fromBytes(14, 20, 23)},
                              {0.90, fromBytes(58, 74, 78)},
                              {0.96, fromBytes(34, 44, 48)},
                              {1.0, fromBytes(12, 17, 19)}}));
    for (double ring = 5; ring < 17; ring += 2)
        canvas.stroke(circle(dialMiddle, dialMiddle, ring), 0.5, grey(1, 0.025f));
    canvas.stroke(circle(dialMiddle, dialMiddle, 18), 0.5, grey(0, 0.35f));

    const Path mark = line(dialMiddle, dialMiddle - 9.5, dialMiddle, dialMiddle - 20);
    canvas.strokeGlow(mark, 3.4, 1.8, palette::lit.withAlpha(0.55f));
    canvas.stroke(mark, 2.6, palette::lit);
    canvas.stroke(mark, 1.1, palette::hot.withAlpha(0.8f));
    return picture;
}

Picture dialRing(int side, double from, double to) {
    Picture picture(side, side);
    Canvas canvas(picture, side / dialSide);
    const Path ring = arc(dialMiddle, dialMiddle, dialRingRadius, from, to);
    const Mask shown = filled(sector(from, to), canvas.pixelsPerPoint());
    const auto paint = [&](const Mask& mask, const Colour& colour) {
        canvas.paint(to - from < 360 ? intersection(mask, shown) : mask, colour);
    };
    const double scale = canvas.pixelsPerPoint();
    paint(blurred(stroked(ring, 5, scale), 2.2 * scale), palette::lit.withAlpha(0.45f));
    paint(stroked(ring, 3.4, scale, false), palette::lit);
    paint(blurred(stroked(ring, 1.2, scale, false), 0.4 * scale), palette::hot.withAlpha(0.75f));
    return picture;
}

Picture sliderTrack(int width, int height, int thumbSide) {
    Picture picture(width, height);
    Canvas canvas(picture, pixelsPerPoint);
    const double w = width / pixelsPerPoint, h = height / pixelsPerPoint;
    const int inset = thumbSide / 4 / 2; // in integers, as the widgets inset their range
    const Path track = w > h ? line(inset, h / 2, w - inset, h / 2) : line(w / 2, inset, w / 2, h - inset);
    canvas.strokeGlow(track, 4.4, 1.9, palette::lit.withAlpha(0.45f));
    canvas.stroke(track, 3.2, palette::lit);
    canvas.strokeGlow(track, 1.1, 0.3, palette::hot.withAlpha(0.75f));
    return picture;
}

Picture sliderThumb(int side) {
    Picture picture(side, side);
    Canvas canvas(picture, pixelsPerPoint);
    // At the range's ends the widget's edge cuts the picture at a quarter: the body stays inside.
    const double middle = side / pixelsPerPoint / 2, radius = middle / 2 - 0.2;
    const Path body = circle(middle, middle, radius);
    canvas.glow(circle(middle, middle + 0.6, radius), 1.5, grey(0, 0.8f));
    canvas.fill(body, along(0, middle - radius, 0, middle + radius,
                            {{0, fromBytes(226, 240, 240)},
                             {0.5, fromBytes(150, 174, 177)},
                             {1, fromBytes(84, 106, 110)}}));
    canvas.fill(circle(middle, middle, radius - 1), along(0, middle - radius, 0, middle + radius,
                                                          {{0, fromBytes(168, 190, 192)},
                                                           {0.5, fromBytes(122, 146, 149)},
                                                           {1, fromBytes(104, 127, 131)}}));
    canvas.fill(circle(middle, middle, radius * 0.38), fromBytes(9, 58, 60));
    canvas.fill(circle(middle, middle, radius * 0.28), palette::lit);
    return picture;
}

Picture comboArrow(int width, int height) {
    Picture picture(width, height);
    Canvas canvas(picture, pixelsPerPoint);
    const double w = width / pixelsPerPoint, h = height / pixelsPerPoint, half = w * 0.24, x = w * 0.54;
    const Path chevron = polyline(
        {{x - half, h / 2 - half * 0.55}, {x, h / 2 + half * 0.55}, {x + half, h / 2 - half * 0.55}});
    canvas.strokeGlow(chevron, 1.6, 1.0, palette::lit.withAlpha(0.35f));
    canvas.stroke(chevron, 1.5, palette::lit);
    return picture;
}

Path arrowSymbol(double x, double y, bool toTheRight) {
    const double tip = toTheRight ? 2.8 : -2.8, middleX = x + 12, middleY = y + 12;
    return polyline({{middleX - tip, middleY - 5}, {middleX + tip, middleY}, {middleX - tip, middleY + 5}});
}

Picture pressedArrow(bool toTheRight) {
    Picture picture(48, 48);
    Canvas canvas(picture, pixelsPerPoint);
    const Path plate = rectangle(1, 1, 22, 22, 5);
    canvas.fill(plate, fromBytes(0, 87, 91));
    canvas.stroke(rectangle(1.5, 1.5, 21, 21, 4.5), 1, palette::lit.withAlpha(0.75f));
    const Path arrow = arrowSymbol(0, 0, toTheRight);
    canvas.strokeGlow(arrow, 2.4, 1.6, palette::lit.withAlpha(0.7f));
    canvas.stroke(arrow, 2.2, palette::hot);
    return picture;
}

Picture toolbarLogo(const Font& font, bool pressed) {
    Picture picture(240, 48);
    Canvas canvas(picture, pixelsPerPoint);
    const Colour ink = pressed ? palette::hot : fromBytes(196, 212, 214);
    const Colour accent = pressed ? palette::hot : palette::lit;
    const Path name = font.text("LORIMOND", 29, 15.9, 10.5, Align::left, 0.2);
    if (pressed)
        canvas.glow(name, 1.6, palette::lit.withAlpha(0.6f));
    canvas.fill(name, ink);

    // A disc with a bite: the moon above the name's last syllable.
    const double scale = canvas.pixelsPerPoint();
    const Mask moon = difference(filled(circle(14.5, 12, 7), scale), filled(circle(17.6, 10.2, 5.6), scale));
    if (pressed)
        canvas.paint(blurred(moon, 1.6 * scale), palette::lit.withAlpha(0.6f));
    canvas.paint(moon, accent);
    canvas.fill(circle(18.4, 9.6, 1.5), accent);
    return picture;
}

Picture toolbarHelp(const Font& font, bool pressed) {
    Picture picture(48, 48);
    Canvas canvas(picture, pixelsPerPoint);
    const Colour ink = pressed ? fromBytes(4, 26, 28) : fromBytes(196, 212, 214);
    if (pressed) {
        canvas.glow(circle(12, 12, 8), 1.8, palette::lit.withAlpha(0.6f));
        canvas.fill(circle(12, 12, 8), palette::lit);
    } else {
        canvas.stroke(circle(12, 12, 7.4), 1.2, ink);
    }
    canvas.fill(font.text("?", 12, 16.3, 12, Align::middle), ink);
    return picture;
}

} // namespace orvane::kestrum::pictures
