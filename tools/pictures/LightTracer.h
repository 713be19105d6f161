// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "pictures/Room.h"

#include <cstdint>

namespace orvane::kestrum::pictures {

/// A sequence of even random numbers that begins where its seed says.
class RandomSequence {
public:
    explicit RandomSequence(std::uint32_t seed) noexcept : state(seed * 747796405u + 2891336453u) {}

    /// @return 0 up to but without 1 (a permuted congruential generator, M. O'Neill, 2014).
    float next() noexcept {
        state = state * 747796405u + 2891336453u;
        const std::uint32_t word = ((state >> ((state >> 28) + 4u)) ^ state) * 277803737u;
        return static_cast<float>(((word >> 22) ^ word) >> 8) / 16777216.0f;
    }

private:
    std::uint32_t state;
};

/// Estimates light in a room by following random paths.
class LightTracer {
public:
    /// @param tracedRoom outlives this object.
    explicit LightTracer(const Room& tracedRoom) noexcept : room(tracedRoom) {}

    /// Light that arrives at a place, so that albedo times it is what the place scatters. The mean of many calls.
    Vector arriving(const Hit& hit, RandomSequence& random) const;

    /// Light that a surface mirrors towards the ray's origin, but for its reflectance. The mean of many calls.
    Vector mirrored(const Hit& hit, const Vector& from, RandomSequence& random) const;

private:
    /// From one lamp, its light being thrown from a random place of it.
    Vector fromLamp(const Lamp& lamp, const Hit& hit, RandomSequence& random) const;

    /// Along a ray that has been scattered before. @param scatterings how many more of them are followed.
    Vector along(const Ray& ray, int scatterings, RandomSequence& random) const;

    Vector scattered(const Hit& hit, int scatterings, RandomSequence& random) const;

    const Room& room;
};

/// Share of light that a surface mirrors at an angle (C. Schlick, 1994). @param from direction of the ray that looks.
float mirroredShare(const Hit& hit, const Vector& from) noexcept;

} // namespace orvane::kestrum::pictures
