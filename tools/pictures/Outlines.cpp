// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/Outlines.h"

#include <numbers>
#include <utility>

namespace orvane::kestrum::pictures {

namespace {

constexpr double quarterTurn = std::numbers::pi / 2;

/// From degrees clockwise from the top to radians clockwise from the right.
double drawingAngle(double degrees) { return degrees * std::numbers::pi / 180 - quarterTurn; }

void through(cairo_t* context, const std::vector<Point>& points) {
    for (const Point& point : points)
        cairo_line_to(context, point.x, point.y);
}

} // namespace

Path rectangle(double x, double y, double width, double height, double cornerRadius) {
    return [=](cairo_t* context) {
        if (cornerRadius <= 0) {
            cairo_rectangle(context, x, y, width, height);
            return;
        }
        const double r = cornerRadius;
        cairo_new_sub_path(context);
        cairo_arc(context, x + width - r, y + r, r, -quarterTurn, 0);
        cairo_arc(context, x + width - r, y + height - r, r, 0, quarterTurn);
        cairo_arc(context, x + r, y + height - r, r, quarterTurn, 2 * quarterTurn);
        cairo_arc(context, x + r, y + r, r, 2 * quarterTurn, 3 * quarterTurn);
        cairo_close_path(context);
    };
}

Path circle(double x, double y, double radius) { return ellipse(x, y, radius, radius); }

Path ellipse(double x, double y, double radiusX, double radiusY) {
    return [=](cairo_t* context) {
        cairo_new_sub_path(context);
        ellipticArc(x, y, radiusX, radiusY, 0, 360)(context);
        cairo_close_path(context);
    };
}

Path line(double x0, double y0, double x1, double y1) { return polyline({{x0, y0}, {x1, y1}}); }

Path polygon(std::vector<Point> corners) {
    return [corners = std::move(corners)](cairo_t* context) {
        cairo_new_sub_path(context);
        through(context, corners);
        cairo_close_path(context);
    };
}

Path polyline(std::vector<Point> points) {
    return [points = std::move(points)](cairo_t* context) {
        cairo_new_sub_path(context);
        through(context, points);
    };
}

Path arc(double x, double y, double radius, double from, double to) {
    return ellipticArc(x, y, radius, radius, from, to);
}

Path ellipticArc(double x, double y, double radiusX, double radiusY, double from, double to) {
    return [=](cairo_t* context) {
        cairo_save(context);
        cairo_translate(context, x, y);
        cairo_scale(context, radiusX, radiusY);
        cairo_new_sub_path(context);
        cairo_arc(context, 0, 0, 1, drawingAngle(from), drawingAngle(to));
        cairo_restore(context);
    };
}

Path with(Path first, Path second) {
    return [first = std::move(first), second = std::move(second)](cairo_t* context) {
        first(context);
        second(context);
    };
}

} // namespace orvane::kestrum::pictures
