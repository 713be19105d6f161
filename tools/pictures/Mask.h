// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cairo.h>

#include <functional>
#include <vector>

namespace orvane::kestrum::pictures {

/// Adds an outline, in points, to the context's current path.
using Path = std::function<void(cairo_t*)>;

/// What a shape covers.
///
/// Shape   [height][width], the upper left pixel being (left, top) of the picture.
/// Units   share of each pixel, 0 to 1.
struct Mask {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    std::vector<float> coverage;

    float at(int x, int y) const noexcept; ///< 0 outside.
};

/// The inside of an outline, even-odd rule. @param scale pixels per point.
Mask filled(const Path& path, double scale);

/// The line along an outline. @param width in points.
Mask stroked(const Path& path, double width, double scale, bool roundEnds = true);

/// Gaussian blur. @param sigma standard deviation in pixels; the mask grows by three of them on every side.
Mask blurred(const Mask& mask, double sigma);

/// Half of a symmetric Gaussian whose whole sum is 1; entry 0 is its middle. @param sigma standard deviation.
std::vector<float> gaussian(double sigma);

/// A mask's part inside another.
Mask intersection(const Mask& first, const Mask& second);

/// A mask's part outside another.
Mask difference(const Mask& mask, const Mask& removed);

} // namespace orvane::kestrum::pictures
