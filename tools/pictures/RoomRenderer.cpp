// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/RoomRenderer.h"

#include "pictures/LightTracer.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace orvane::kestrum::pictures {

namespace {

/// The listener's eyes, behind the desk; the picture's horizon lies above its middle, as through a shifted lens.
struct Eye {
    static constexpr Vector place{0, 1.32f, -0.6f};
    static constexpr float halfWidth = 0.90f; ///< Of the picture at a distance of one metre.
    static constexpr float horizon = 0.42f;   ///< Share of the height.

    int width;
    int height;

    Ray through(float x, float y) const noexcept {
        const float perPixel = 2 * halfWidth / static_cast<float>(width);
        return {place, unit({(x - static_cast<float>(width) / 2) * perPixel,
                             (horizon * static_cast<float>(height) - y) * perPixel, 1})};
    }
};

/// Light at one traced place.
struct Cell {
    bool seen = false;
    Vector point;
    Vector normal;
    Vector arriving;
    Vector mirrored;
};

struct Light {
    Vector arriving;
    Vector mirrored;
};

/// How far two places belong to one surface, 0 to 1.
float kinship(const Cell& cell, const Vector& point, const Vector& normal) noexcept {
    if (!cell.seen)
        return 0;
    const float facing = std::max(0.0f, dot(cell.normal, normal));
    const float offPlane = std::abs(dot(cell.point - point, normal));
    return facing * facing * facing * facing * std::exp(-offPlane * 120);
}

class LightGrid {
public:
    LightGrid(const LightTracer& lightTracer, const Room& tracedRoom, const Eye& eye,
              const RoomQuality& quality)
        : tracer(lightTracer),
          cellSize(quality.cell),
          columns(eye.width / quality.cell + 1),
          rows(eye.height / quality.cell + 1),
          samples(quality.samples),
          cells(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows)) {
        for (int row = 0; row < rows; ++row)
            for (int column = 0; column < columns; ++column) {
                const Ray ray =
                    eye.through((static_cast<float>(column) + 0.5f) * static_cast<float>(cellSize),
                                (static_cast<float>(row) + 0.5f) * static_cast<float>(cellSize));
                if (const std::optional<Hit> hit = tracedRoom.nearest(ray)) {
                    const Light light =
                        traced(*hit, ray.direction, static_cast<std::uint32_t>(row * columns + column));
                    at(column, row) = {true, hit->point, hit->normal, light.arriving, light.mirrored};
                }
            }
        for (const int step : {1, 2, 4, 8, 16})
            smooth(step);
    }

    Light lightAt(const Hit& hit, const Vector& from, float x, float y) const {
        const float column = x / static_cast<float>(cellSize) - 0.5f,
                    row = y / static_cast<float>(cellSize) - 0.5f;
        const int left = static_cast<int>(std::floor(column)), top = static_cast<int>(std::floor(row));
        Light sum;
        float weights = 0;
        for (int dy = 0; dy < 2; ++dy)
            for (int dx = 0; dx < 2; ++dx) {
                const Cell& cell =
                    at(std::clamp(left + dx, 0, columns - 1), std::clamp(top + dy, 0, rows - 1));
                const float nearX = 1 - std::abs(column - static_cast<float>(left + dx));
                const float nearY = 1 - std::abs(row - static_cast<float>(top + dy));
                const float weight = kinship(cell, hit.point, hit.normal) * (nearX * nearY + 0.01f);
                sum.arriving = sum.arriving + cell.arriving * weight;
                sum.mirrored = sum.mirrored + cell.mirrored * weight;
                weights += weight;
            }
        if (weights < 1e-3f) // thinner than the grid: traced for itself
            return traced(hit, from,
                          static_cast<std::uint32_t>(x * 16) * 7919u + static_cast<std::uint32_t>(y * 16));
        return {sum.arriving * (1 / weights), sum.mirrored * (1 / weights)};
    }

private:
    std::size_t index(int column, int row) const noexcept {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
               static_cast<std::size_t>(column);
    }
    Cell& at(int column, int row) { return cells[index(column, row)]; }
    const Cell& at(int column, int row) const { return cells[index(column, row)]; }

    Light traced(const Hit& hit, const Vector& from, std::uint32_t seed) const {
        RandomSequence random(seed);
        Light light;
        const float share = 1.0f / static_cast<float>(samples);
        for (int sample = 0; sample < samples; ++sample) {
            light.arriving = light.arriving + tracer.arriving(hit, random) * share;
            if (hit.surface.reflectance > 0)
                light.mirrored = light.mirrored + tracer.mirrored(hit, from, random) * share;
        }
        return light;
    }

    void smooth(int step) {
        constexpr std::array<float, 3> kernel{3.0f / 8, 1.0f / 4, 1.0f / 16};
        std::vector<Cell> smoothed = cells;
        for (int row = 0; row < rows; ++row)
            for (int column = 0; column < columns; ++column) {
                const Cell& middle = at(column, row);
                Cell& target = smoothed[index(column, row)];
                Light sum;
                float weights = 0;
                for (int dy = -2; dy <= 2; ++dy)
                    for (int dx = -2; dx <= 2; ++dx) {
                        const int x = column + dx * step, y = row + dy * step;
                        if (x < 0 || y < 0 || x >= columns || y >= rows)
                            continue;
                        const Cell& cell = at(x, y);
                        const float weight = kernel[static_cast<std::size_t>(std::abs(dx))] *
                                             kernel[static_cast<std::size_t>(std::abs(dy))] *
                                             kinship(cell, middle.point, middle.normal);
                        sum.arriving = sum.arriving + cell.arriving * weight;
                        sum.mirrored = sum.mirrored + cell.mirrored * weight;
                        weights += weight;
                    }
                if (weights > 0) {
                    target.arriving = sum.arriving * (1 / weights);
                    target.mirrored = sum.mirrored * (1 / weights);
                }
            }
        cells = std::move(smoothed);
    }

    const LightTracer& tracer;
    int cellSize;
    int columns;
    int rows;
    int samples;
    std::vector<Cell> cells;
};

/// Linear light to the encoding of screens, with a soft shoulder for what is too bright for them.
float encoded(float light) noexcept {
    const float exposed = 1 - std::exp(-light);
    return exposed <= 0.0031308f ? 12.92f * exposed : 1.055f * std::pow(exposed, 1 / 2.4f) - 0.055f;
}

} // namespace

Picture renderRoom(int width, int height, const RoomQuality& quality) {
    const Room room;
    const LightTracer tracer(room);
    const Eye eye{width, height};
    const LightGrid grid(tracer, room, eye, quality);
    Picture picture(width, height);
    const float share = 1.0f / static_cast<float>(quality.subpixels);
    constexpr float exposure = 2.4f;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            Vector sum;
            for (int i = 0; i < quality.subpixels * quality.subpixels; ++i) {
                const int row = i / quality.subpixels, column = i % quality.subpixels;
                const float px = static_cast<float>(x) + (static_cast<float>(column) + 0.5f) * share;
                const float py = static_cast<float>(y) + (static_cast<float>(row) + 0.5f) * share;
                const Ray ray = eye.through(px, py);
                const std::optional<Hit> hit = room.nearest(ray);
                if (!hit)
                    continue;
                const Light light = grid.lightAt(*hit, ray.direction, px, py);
                const Vector seen = hit->surface.emission + hit->surface.albedo * light.arriving +
                                    light.mirrored * mirroredShare(*hit, ray.direction);
                sum = sum + Vector{std::min(seen.x, 2.0f), std::min(seen.y, 2.0f), std::min(seen.z, 2.0f)};
            }
            const Vector mean = sum * (exposure * share * share);
            picture.at(x, y) = {encoded(mean.x), encoded(mean.y), encoded(mean.z), 1};
        }
    return picture;
}

} // namespace orvane::kestrum::pictures
