// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/RoomTextures.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace orvane::kestrum::pictures::textures {

namespace {

/// Even noise from 0 to 1 for a pair of whole numbers.
float noise(int a, int b) noexcept {
    std::uint32_t hash =
        static_cast<std::uint32_t>(a) * 0x9E3779B1u ^ static_cast<std::uint32_t>(b) * 0x85EBCA77u;
    hash = (hash ^ (hash >> 15)) * 0x2C1B3C6Du;
    hash = (hash ^ (hash >> 12)) * 0x297A2D39u;
    return static_cast<float>((hash ^ (hash >> 15)) >> 8) / 16777216.0f;
}

/// Place within the cell of a row of cells, 0 to 1.
float within(float position, float cell) noexcept { return position / cell - std::floor(position / cell); }
int cellOf(float position, float cell) noexcept { return static_cast<int>(std::floor(position / cell)); }

constexpr float stripWidth = 0.066f; ///< Of one channel of the desk.

} // namespace

Surface floorBoards(const Vector& point) {
    const float shade = 0.8f + 0.4f * noise(cellOf(point.x, 0.14f), cellOf(point.z, 1.1f));
    const bool joint = within(point.x, 0.14f) < 0.02f;
    return {Vector{0.085f, 0.062f, 0.048f} * (joint ? 0.4f : shade), {}, 0.04f, 0.18f};
}

Surface fabric(const Vector& point) {
    const float along = std::abs(point.x) > 2.2f ? point.z : point.x;
    const float weave = 0.93f + 0.14f * noise(cellOf(along, 0.012f), cellOf(point.y, 0.012f));
    return {Vector{0.115f, 0.150f, 0.158f} * weave, {}, 0, 0};
}

Surface slats(float across) {
    constexpr float pitch = 0.056f;
    const float place = within(across, pitch);
    if (place < 0.30f)
        return {{0.012f, 0.011f, 0.010f}, {}, 0, 0};
    const float shade = 0.85f + 0.3f * noise(cellOf(across, pitch), 7);
    return {Vector{0.175f, 0.115f, 0.070f} * shade, {}, 0.02f, 0.4f};
}

Surface monitorFront(const Vector& local, const Vector& half, bool front) {
    if (!front)
        return {{0.03f, 0.033f, 0.035f}, {}, 0.03f, 0.3f};
    const auto ring = [&](float y, float radius) { return std::hypot(local.x, local.y - y) / radius; };
    const float woofer = ring(-half.y * 0.36f, 0.245f), tweeter = ring(half.y * 0.52f, 0.14f);
    if (woofer < 1) {
        if (woofer > 0.93f)
            return {{0.16f, 0.17f, 0.17f}, {}, 0.10f, 0.25f}; // its frame
        if (woofer > 0.78f)
            return {{0.018f, 0.018f, 0.018f}, {}, 0.03f, 0.35f}; // its rubber edge
        if (woofer < 0.28f)
            return {{0.035f, 0.038f, 0.040f}, {}, 0.06f, 0.2f};
        return {Vector{0.075f, 0.085f, 0.088f} * (0.55f + 0.6f * woofer), {}, 0.02f, 0.4f};
    }
    if (tweeter < 1) {
        if (tweeter > 0.9f)
            return {{0.13f, 0.14f, 0.14f}, {}, 0.10f, 0.25f};
        if (tweeter < 0.30f)
            return {{0.20f, 0.19f, 0.16f}, {}, 0.15f, 0.2f};
        return {Vector{0.05f, 0.055f, 0.057f} * (0.4f + 0.8f * tweeter), {}, 0.04f, 0.3f};
    }
    if (std::hypot(local.x - half.x * 0.8f, local.y + half.y * 0.93f) < 0.010f)
        return {{}, {0.10f, 0.75f, 0.68f}, 0, 0}; // it is on
    const bool edge = std::abs(local.x) > half.x - 0.012f || std::abs(local.y) > half.y - 0.012f;
    return {edge ? Vector{0.10f, 0.11f, 0.115f} : Vector{0.045f, 0.050f, 0.053f}, {}, 0.03f, 0.3f};
}

Surface desk(const Vector& point, bool top) {
    constexpr Vector body{0.028f, 0.033f, 0.036f};
    if (!top || point.z < 0.45f)
        return {body, {}, 0.04f, 0.22f};
    const int channel = cellOf(point.x, stripWidth);
    const float x = (within(point.x, stripWidth) - 0.5f) * stripWidth;
    if (std::abs(x) > stripWidth / 2 - 0.0012f)
        return {{0.010f, 0.011f, 0.012f}, {}, 0.02f, 0.3f}; // between two channels
    if (point.z > 0.98f && point.z < 1.56f) {               // knobs, some of them with a lit button beside
        constexpr float pitch = 0.058f;
        const int row = cellOf(point.z, pitch);
        const float z = (within(point.z, pitch) - 0.5f) * pitch, radius = std::hypot(x, z);
        if (radius < 0.013f)
            return {radius < 0.010f ? Vector{0.075f, 0.090f, 0.095f} : Vector{0.015f, 0.017f, 0.018f},
                    {},
                    0.05f,
                    0.3f};
        if (std::hypot(x - 0.022f, z - 0.018f) < 0.0042f && noise(channel, row) < 0.16f)
            return {{},
                    noise(channel, row + 90) < 0.12f ? Vector{0.34f, 0.19f, 0.06f}
                                                     : Vector{0.05f, 0.28f, 0.26f},
                    0,
                    0};
        return {body, {}, 0.04f, 0.25f};
    }
    if (point.z > 0.58f && point.z < 0.92f) { // faders
        const float cap = 0.66f + 0.18f * noise(channel, 3);
        if (std::abs(x) < 0.011f && std::abs(point.z - cap) < 0.024f)
            return {std::abs(point.z - cap) < 0.003f ? Vector{0.4f, 0.42f, 0.42f}
                                                     : Vector{0.11f, 0.12f, 0.125f},
                    {},
                    0.04f,
                    0.3f};
        if (std::abs(x) < 0.0025f)
            return {{0.006f, 0.006f, 0.007f}, {}, 0, 0};
    }
    return {body, {}, 0.04f, 0.25f};
}

Surface meterBridge(const Vector& point, bool front) {
    constexpr Vector body{0.022f, 0.026f, 0.028f};
    constexpr float bottom = 0.875f, height = 0.07f, segment = 0.0050f;
    if (!front || point.y < bottom || point.y > bottom + height)
        return {body, {}, 0.04f, 0.2f};
    const int channel = cellOf(point.x, stripWidth / 3);
    const float x = within(point.x, stripWidth / 3),
                level = 0.15f + 0.35f * noise(channel, 11) + 0.35f * noise(channel / 4, 12);
    const float place = (point.y - bottom) / height;
    if (x < 0.25f || x > 0.75f || within(point.y - bottom, segment) < 0.3f)
        return {{0.008f, 0.009f, 0.010f}, {}, 0.04f, 0.1f};
    const Vector unlit{0.012f, 0.020f, 0.020f};
    if (place > level)
        return {unlit, {}, 0.04f, 0.1f};
    return {unlit, place > 0.68f ? Vector{0.11f, 0.058f, 0.014f} : Vector{0.006f, 0.048f, 0.044f}, 0, 0};
}

Surface liveWall(const Vector& point) {
    const float across = std::abs(point.x) > 2.9f ? point.z : point.x;
    constexpr float pitch = 0.18f;
    const float place = within(across, pitch), shade = 0.75f + 0.5f * noise(cellOf(across, pitch), 5);
    if (place < 0.16f)
        return {{0.05f, 0.04f, 0.03f}, {}, 0, 0};
    return {Vector{0.34f, 0.22f, 0.13f} * shade, {}, 0, 0};
}

} // namespace orvane::kestrum::pictures::textures
