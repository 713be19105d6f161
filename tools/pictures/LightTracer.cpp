// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/LightTracer.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane::kestrum::pictures {

namespace {

constexpr float offSurface = 1e-3f; ///< Metres, so that a ray does not meet the surface from which it starts.
constexpr float pi = std::numbers::pi_v<float>;

/// A direction round the normal, likelier the steeper, as an even scatterer needs.
Vector scatteredDirection(const Vector& normal, RandomSequence& random) {
    const float angle = 2 * pi * random.next(), height = 1 - 2 * random.next();
    const float radius = std::sqrt(std::max(0.0f, 1 - height * height));
    const Vector onSphere{radius * std::cos(angle), radius * std::sin(angle), height};
    const Vector sum = normal + onSphere * 0.999f;
    return unit(sum);
}

} // namespace

Vector LightTracer::fromLamp(const Lamp& lamp, const Hit& hit, RandomSequence& random) const {
    const Vector place = lamp.corner + lamp.edgeU * random.next() + lamp.edgeV * random.next();
    const Vector way = place - hit.point, area = cross(lamp.edgeU, lamp.edgeV);
    const float squared = dot(way, way), distance = std::sqrt(squared);
    const float cosineHere = dot(way, hit.normal) / distance, cosineThere = -dot(way, area) / distance;
    if (cosineHere <= 0 || cosineThere <= 0)
        return {};
    const Ray shadow{hit.point + hit.normal * offSurface, way * (1 / distance)};
    if (!room.clear(shadow, distance))
        return {};
    // Nearer than a few centimetres the estimate would be all noise.
    return lamp.radiance * (cosineHere * cosineThere / (pi * std::max(squared, 0.004f)));
}

Vector LightTracer::scattered(const Hit& hit, int scatterings, RandomSequence& random) const {
    if (scatterings == 0)
        return {};
    const Ray ray{hit.point + hit.normal * offSurface, scatteredDirection(hit.normal, random)};
    return along(ray, scatterings - 1, random);
}

Vector LightTracer::along(const Ray& ray, int scatterings, RandomSequence& random) const {
    const std::optional<Hit> hit = room.nearest(ray);
    if (!hit)
        return {};
    const auto& lamps = room.allLamps();
    const auto count = static_cast<float>(lamps.size());
    const auto chosen = std::min(static_cast<std::size_t>(random.next() * count), lamps.size() - 1);
    const Vector light = fromLamp(lamps[chosen], *hit, random) * count + scattered(*hit, scatterings, random);
    return hit->surface.albedo * light;
}

Vector LightTracer::arriving(const Hit& hit, RandomSequence& random) const {
    Vector light = scattered(hit, 3, random);
    for (const Lamp& lamp : room.allLamps())
        light = light + fromLamp(lamp, hit, random);
    return light;
}

Vector LightTracer::mirrored(const Hit& hit, const Vector& from, RandomSequence& random) const {
    const Vector mirror = from - hit.normal * (2 * dot(from, hit.normal));
    const Vector spread = scatteredDirection(mirror, random) - mirror;
    const Ray ray{hit.point + hit.normal * offSurface, unit(mirror + spread * hit.surface.roughness)};
    if (dot(ray.direction, hit.normal) <= 0)
        return {};
    const std::optional<Hit> seen = room.nearest(ray);
    if (!seen)
        return {};
    Vector light = scattered(*seen, 1, random);
    for (const Lamp& lamp : room.allLamps())
        light = light + fromLamp(lamp, *seen, random);
    return seen->surface.emission + seen->surface.albedo * light;
}

float mirroredShare(const Hit& hit, const Vector& from) noexcept {
    if (hit.surface.reflectance <= 0)
        return 0;
    const float slant = 1 - std::clamp(-dot(from, hit.normal), 0.0f, 1.0f);
    const float glossy = 1 - hit.surface.roughness; // rough surfaces mirror little more at a slant
    return hit.surface.reflectance +
           (glossy - hit.surface.reflectance) * 0.6f * slant * slant * slant * slant * slant;
}

} // namespace orvane::kestrum::pictures
