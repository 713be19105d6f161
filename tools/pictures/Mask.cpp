// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/Mask.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <stdexcept>

namespace orvane::kestrum::pictures {

namespace {

struct SurfaceDeleter {
    void operator()(cairo_surface_t* surface) const noexcept { cairo_surface_destroy(surface); }
};
struct ContextDeleter {
    void operator()(cairo_t* context) const noexcept { cairo_destroy(context); }
};
using Surface = std::unique_ptr<cairo_surface_t, SurfaceDeleter>;
using Context = std::unique_ptr<cairo_t, ContextDeleter>;

struct Drawing {
    Surface surface;
    Context context;
};

/// Of a pixel in an array of rows.
std::size_t index(int x, int y, int width) noexcept {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
}

struct Stroke {
    double width = 0; ///< 0: the inside is filled instead.
    bool roundEnds = true;
};

Drawing drawing(Surface surface, int left, int top, double scale) {
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error("a drawing surface cannot be made");
    Context context(cairo_create(surface.get()));
    cairo_translate(context.get(), -left, -top);
    cairo_scale(context.get(), scale, scale);
    cairo_set_antialias(context.get(), CAIRO_ANTIALIAS_BEST);
    cairo_set_fill_rule(context.get(), CAIRO_FILL_RULE_EVEN_ODD);
    cairo_set_tolerance(context.get(), 0.05);
    return {std::move(surface), std::move(context)};
}

void apply(cairo_t* context, const Path& path, const Stroke& stroke) {
    cairo_new_path(context);
    path(context);
    cairo_set_line_width(context, stroke.width);
    cairo_set_line_cap(context, stroke.roundEnds ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
    cairo_set_line_join(context, stroke.roundEnds ? CAIRO_LINE_JOIN_ROUND : CAIRO_LINE_JOIN_MITER);
}

Mask rasterised(const Path& path, const Stroke& stroke, double scale) {
    // Without bounds, since glyphs outside of a surface's bounds are left out of paths.
    const Drawing probe =
        drawing(Surface(cairo_recording_surface_create(CAIRO_CONTENT_ALPHA, nullptr)), 0, 0, scale);
    apply(probe.context.get(), path, stroke);
    double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    if (stroke.width > 0)
        cairo_stroke_extents(probe.context.get(), &x0, &y0, &x1, &y1);
    else
        cairo_fill_extents(probe.context.get(), &x0, &y0, &x1, &y1);

    Mask mask;
    mask.left = static_cast<int>(std::floor(x0 * scale)) - 1;
    mask.top = static_cast<int>(std::floor(y0 * scale)) - 1;
    mask.width = static_cast<int>(std::ceil(x1 * scale)) + 1 - mask.left;
    mask.height = static_cast<int>(std::ceil(y1 * scale)) + 1 - mask.top;
    const Drawing target =
        drawing(Surface(cairo_image_surface_create(CAIRO_FORMAT_A8, mask.width, mask.height)), mask.left,
                mask.top, scale);
    apply(target.context.get(), path, stroke);
    cairo_set_source_rgba(target.context.get(), 1, 1, 1, 1);
    if (stroke.width > 0)
        cairo_stroke(target.context.get());
    else
        cairo_fill(target.context.get());
    cairo_surface_flush(target.surface.get());

    const unsigned char* const bytes = cairo_image_surface_get_data(target.surface.get());
    const int stride = cairo_image_surface_get_stride(target.surface.get());
    mask.coverage.reserve(static_cast<std::size_t>(mask.width) * static_cast<std::size_t>(mask.height));
    for (int y = 0; y < mask.height; ++y)
        for (int x = 0; x < mask.width; ++x)
            mask.coverage.push_back(static_cast<float>(bytes[y * stride + x]) / 255.0f);
    return mask;
}

/// Blurs along x and swaps the axes, so that twice gives both directions and the first orientation.
std::vector<float> blurredAndTransposed(const std::vector<float>& source, int width, int height,
                                        const std::vector<float>& weights) {
    const int radius = static_cast<int>(weights.size()) - 1;
    std::vector<float> result(source.size());
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            float sum = 0;
            for (int k = std::max(-radius, -x); k <= std::min(radius, width - 1 - x); ++k)
                sum += weights[static_cast<std::size_t>(std::abs(k))] * source[index(x + k, y, width)];
            result[index(y, x, height)] = sum;
        }
    return result;
}

template <class Combine>
Mask combined(const Mask& first, const Mask& second, Combine combine) {
    Mask result = first;
    for (int y = 0; y < result.height; ++y)
        for (int x = 0; x < result.width; ++x) {
            float& value = result.coverage[index(x, y, result.width)];
            value = combine(value, second.at(x + result.left, y + result.top));
        }
    return result;
}

} // namespace

float Mask::at(int x, int y) const noexcept {
    if (x < left || y < top || x >= left + width || y >= top + height)
        return 0;
    return coverage[index(x - left, y - top, width)];
}

Mask filled(const Path& path, double scale) { return rasterised(path, {}, scale); }

Mask stroked(const Path& path, double width, double scale, bool roundEnds) {
    return rasterised(path, {width, roundEnds}, scale);
}

Mask blurred(const Mask& mask, double sigma) {
    if (sigma < 0.1)
        return mask;
    const int margin = static_cast<int>(std::ceil(3 * sigma));
    Mask grown{mask.left - margin, mask.top - margin, mask.width + 2 * margin, mask.height + 2 * margin, {}};
    grown.coverage.resize(static_cast<std::size_t>(grown.width) * static_cast<std::size_t>(grown.height));
    for (int y = 0; y < mask.height; ++y)
        std::copy_n(mask.coverage.begin() + y * mask.width, mask.width,
                    grown.coverage.begin() + (y + margin) * grown.width + margin);
    const std::vector<float> weights = gaussian(sigma);
    grown.coverage = blurredAndTransposed(grown.coverage, grown.width, grown.height, weights);
    grown.coverage = blurredAndTransposed(grown.coverage, grown.height, grown.width, weights);
    return grown;
}

std::vector<float> gaussian(double sigma) {
    const int radius = static_cast<int>(std::ceil(3 * sigma));
    std::vector<float> weights;
    double sum = 0;
    for (int i = 0; i <= radius; ++i) {
        const double weight = std::exp(-0.5 * i * i / (sigma * sigma));
        weights.push_back(static_cast<float>(weight));
        sum += i == 0 ? weight : 2 * weight;
    }
    for (float& weight : weights)
        weight /= static_cast<float>(sum);
    return weights;
}

Mask intersection(const Mask& first, const Mask& second) {
    return combined(first, second, [](float a, float b) { return a * b; });
}

Mask difference(const Mask& mask, const Mask& removed) {
    return combined(mask, removed, [](float a, float b) { return a * (1 - b); });
}

} // namespace orvane::kestrum::pictures
