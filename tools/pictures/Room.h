// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "pictures/Vector.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace orvane::kestrum::pictures {

/// What a surface does with light at one place.
struct Surface {
    Vector albedo;          ///< Share of light that it scatters evenly.
    Vector emission;        ///< Radiance of its own, which the eye and mirrors see.
    float reflectance = 0;  ///< Share that it mirrors when looked at straight.
    float roughness = 0.2f; ///< Spread of the mirrored directions.
};

/// A rectangle that lights one side of it. It stands in no ray's way.
struct Lamp {
    Vector corner;
    Vector edgeU; ///< Along one side, its whole length.
    Vector edgeV; ///< Along the other; the light leaves towards cross(edgeU, edgeV).
    Vector radiance;
};

struct Hit {
    float distance = 0;
    Vector point;
    Vector normal; ///< Towards the side from which the ray came.
    Surface surface;
};

/// A control room in metres: the listener's eyes at the origin's plane, the window to the live room ahead.
class Room {
public:
    Room();

    /// The nearest surface along a ray.
    std::optional<Hit> nearest(const Ray& ray) const;

    /// @return whether nothing stands between the ray's origin and `distance` along it.
    bool clear(const Ray& ray, float distance) const noexcept;

    const std::vector<Lamp>& allLamps() const noexcept { return lamps; }

private:
    enum class Material : std::uint8_t {
        wall,
        ceiling,
        floor,
        fabric,
        slats,
        trim,
        monitor,
        desk,
        bridge,
        liveWall,
        metal,
        strip
    };

    struct Box {
        Vector middle;
        Vector half; ///< Half of its size.
        Material material;
        float cosine; ///< Of its turn about the vertical.
        float sine;
    };
    struct Crossing {
        float distance;
        Vector local;  ///< Place relative to the box's middle, in its own axes.
        Vector normal; ///< In its own axes.
    };

    void add(Material material, Vector from, Vector to);
    void addTurned(Material material, Vector middle, Vector half, float degrees);
    void addShell();
    void addFrontWall();
    void addLiveRoom();
    void addSides();
    void addCeilingCloud();
    void addDesk();

    static bool crosses(const Box& box, const Ray& ray, float limit, Crossing& crossing) noexcept;
    static Surface surfaceOf(const Box& box, const Crossing& crossing, const Vector& point);

    std::vector<Box> boxes;
    std::vector<Lamp> lamps;
};

} // namespace orvane::kestrum::pictures
