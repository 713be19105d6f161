// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/Picture.h"

#include <algorithm>
#include <cmath>

namespace orvane::kestrum::pictures {

namespace {

Colour ramp(const std::vector<Stop>& stops, double place) {
    if (place <= stops.front().place)
        return stops.front().colour;
    for (std::size_t i = 1; i < stops.size(); ++i)
        if (place < stops[i].place) {
            const double span = stops[i].place - stops[i - 1].place;
            return mix(stops[i - 1].colour, stops[i].colour,
                       static_cast<float>((place - stops[i - 1].place) / span));
        }
    return stops.back().colour;
}

/// `upper` not multiplied by its alpha, `lower` multiplied.
void over(const Colour& upper, float coverage, Colour& lower) noexcept {
    const float alpha = upper.alpha * coverage;
    lower.red = upper.red * alpha + lower.red * (1 - alpha);
    lower.green = upper.green * alpha + lower.green * (1 - alpha);
    lower.blue = upper.blue * alpha + lower.blue * (1 - alpha);
    lower.alpha = alpha + lower.alpha * (1 - alpha);
}

/// Blurs along x and swaps the axes.
Picture blurredAndTransposed(const Picture& picture, const std::vector<float>& weights) {
    const int radius = static_cast<int>(weights.size()) - 1;
    Picture result(picture.height, picture.width);
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            Colour sum{0, 0, 0, 0};
            for (int k = -radius; k <= radius; ++k) {
                const Colour& pixel = picture.at(std::clamp(x + k, 0, picture.width - 1), y);
                const float weight = weights[static_cast<std::size_t>(std::abs(k))];
                sum = {sum.red + weight * pixel.red, sum.green + weight * pixel.green,
                       sum.blue + weight * pixel.blue, sum.alpha + weight * pixel.alpha};
            }
            result.at(y, x) = sum;
        }
    return result;
}

} // namespace

Picture::Picture(int pictureWidth, int pictureHeight)
    : width(pictureWidth),
      height(pictureHeight),
      pixels(static_cast<std::size_t>(pictureWidth) * static_cast<std::size_t>(pictureHeight),
             Colour{0, 0, 0, 0}) {}

Shade along(double x0, double y0, double x1, double y1, std::vector<Stop> stops) {
    const double dx = x1 - x0, dy = y1 - y0;
    return Shade([=, stops = std::move(stops)](double x, double y) {
        return ramp(stops, ((x - x0) * dx + (y - y0) * dy) / (dx * dx + dy * dy));
    });
}

Shade around(double x, double y, double radius, std::vector<Stop> stops) {
    return Shade([=, stops = std::move(stops)](double px, double py) {
        return ramp(stops, std::hypot(px - x, py - y) / radius);
    });
}

void Canvas::paint(const Mask& mask, const Shade& shade) {
    for (int y = std::max(0, mask.top); y < std::min(picture.height, mask.top + mask.height); ++y)
        for (int x = std::max(0, mask.left); x < std::min(picture.width, mask.left + mask.width); ++x)
            if (const float coverage = mask.at(x, y); coverage > 0)
                over(shade((x + 0.5) / scale, (y + 0.5) / scale), coverage, picture.at(x, y));
}

void Canvas::fill(const Path& path, const Shade& shade) { paint(filled(path, scale), shade); }

void Canvas::stroke(const Path& path, double width, const Shade& shade, bool roundEnds) {
    paint(stroked(path, width, scale, roundEnds), shade);
}

void Canvas::glow(const Path& path, double sigma, const Shade& shade) {
    paint(blurred(filled(path, scale), sigma * scale), shade);
}

void Canvas::strokeGlow(const Path& path, double width, double sigma, const Shade& shade) {
    paint(blurred(stroked(path, width, scale), sigma * scale), shade);
}

void Canvas::innerShadow(const Path& path, double offset, double sigma, const Shade& shade) {
    const Mask inside = filled(path, scale);
    Mask lowered = blurred(inside, sigma * scale);
    lowered.top += static_cast<int>(std::lround(offset * scale));
    paint(difference(inside, lowered), shade);
}

Picture blurred(const Picture& picture, double sigma) {
    const std::vector<float> weights = gaussian(sigma);
    return blurredAndTransposed(blurredAndTransposed(picture, weights), weights);
}

} // namespace orvane::kestrum::pictures
