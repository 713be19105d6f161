// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "pictures/Mask.h"

namespace orvane::kestrum::pictures {

struct Point {
    double x = 0;
    double y = 0;
};

Path rectangle(double x, double y, double width, double height, double cornerRadius = 0);
Path circle(double x, double y, double radius);
Path ellipse(double x, double y, double radiusX, double radiusY);
Path line(double x0, double y0, double x1, double y1);
Path polygon(std::vector<Point> corners);

/// An open line through the points.
Path polyline(std::vector<Point> points);

/// Part of a circle. Units: degrees, 0 up, clockwise, `from` below `to`.
Path arc(double x, double y, double radius, double from, double to);

/// Part of an upright ellipse, the angle being that of the circle from which it is squeezed.
Path ellipticArc(double x, double y, double radiusX, double radiusY, double from, double to);

/// Both outlines, filled by the even-odd rule: the second is a hole in the first.
Path with(Path first, Path second);

} // namespace orvane::kestrum::pictures
