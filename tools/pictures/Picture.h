// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "pictures/Colour.h"
#include "pictures/Mask.h"

#include <functional>
#include <vector>

namespace orvane::kestrum::pictures {

/// A picture in the making: components are floats until it is written, so that soft light does not band.
///
/// Shape   pixels [height][width].
/// Units   sRGB-encoded components multiplied by alpha.
struct Picture {
    Picture(int pictureWidth, int pictureHeight);

    Colour& at(int x, int y) noexcept { return pixels[index(x, y)]; }
    const Colour& at(int x, int y) const noexcept { return pixels[index(x, y)]; }

    int width;
    int height;
    std::vector<Colour> pixels;

private:
    std::size_t index(int x, int y) const noexcept {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
    }
};

/// Colour of a shape at a place in points. A single colour converts.
class Shade {
public:
    Shade(const Colour& colour)
        : // NOLINT(google-explicit-constructor): shapes take colours
          shade([colour](double, double) { return colour; }) {}
    explicit Shade(std::function<Colour(double, double)> function) : shade(std::move(function)) {}

    Colour operator()(double x, double y) const { return shade(x, y); }

private:
    std::function<Colour(double, double)> shade;
};

struct Stop {
    double place = 0; ///< 0 to 1 along the ramp.
    Colour colour;
};

/// From (x0, y0) to (x1, y1), beyond them the end colours.
Shade along(double x0, double y0, double x1, double y1, std::vector<Stop> stops);

/// Round (x, y): place 1 lies at `radius`.
Shade around(double x, double y, double radius, std::vector<Stop> stops);

/// Draws shapes onto a picture, in points.
class Canvas {
public:
    /// @param target outlives this canvas. @param pixelsPerPoint 2 for pictures shown at half their size.
    explicit Canvas(Picture& target, double pixelsPerPoint = 2.0) : picture(target), scale(pixelsPerPoint) {}

    void fill(const Path& path, const Shade& shade);
    void stroke(const Path& path, double width, const Shade& shade, bool roundEnds = true);

    /// The shape's blurred likeness, outside and inside of it. @param sigma in points.
    void glow(const Path& path, double sigma, const Shade& shade);
    void strokeGlow(const Path& path, double width, double sigma, const Shade& shade);

    /// What a light from above leaves dark along the upper edge of a hollow.
    void innerShadow(const Path& path, double offset, double sigma, const Shade& shade);

    void paint(const Mask& mask, const Shade& shade);

    double pixelsPerPoint() const noexcept { return scale; }

private:
    Picture& picture;
    double scale;
};

/// Gaussian blur; beyond its edges a picture goes on as it ends. @param sigma standard deviation in pixels.
Picture blurred(const Picture& picture, double sigma);

} // namespace orvane::kestrum::pictures
