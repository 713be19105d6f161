// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/Room.h"

#include "pictures/RoomTextures.h"

#include <algorithm>
#include <limits>
#include <numbers>

namespace orvane::kestrum::pictures {

namespace {

// Metres. Ceiling and front wall are those of a small control room for six people.
constexpr float halfWidth = 2.4f, roomHeight = 2.75f, frontWall = 4.0f, backWall = -2.6f;
constexpr float windowHalfWidth = 1.12f, windowSill = 1.22f, windowHead = 2.06f, wallDepth = 0.22f;

constexpr Vector warm{1.0f, 0.66f, 0.36f};
constexpr Vector teal{0.16f, 0.80f, 0.74f};

} // namespace

Room::Room() {
    addShell();
    addFrontWall();
    addLiveRoom();
    addSides();
    addCeilingCloud();
    addDesk();
}

void Room::add(Material material, Vector from, Vector to) {
    boxes.push_back({(from + to) * 0.5f, (to - from) * 0.5f, material, 1, 0});
}

void Room::addTurned(Material material, Vector middle, Vector half, float degrees) {
    const float angle = degrees * std::numbers::pi_v<float> / 180;
    boxes.push_back({middle, half, material, std::cos(angle), std::sin(angle)});
}

void Room::addShell() {
    add(Material::floor, {-halfWidth, -0.1f, backWall}, {halfWidth, 0, frontWall});
    add(Material::ceiling, {-halfWidth, roomHeight, backWall}, {halfWidth, roomHeight + 0.1f, frontWall});
    add(Material::wall, {-halfWidth - 0.1f, 0, backWall}, {-halfWidth, roomHeight, frontWall});
    add(Material::wall, {halfWidth, 0, backWall}, {halfWidth + 0.1f, roomHeight, frontWall});
    add(Material::wall, {-halfWidth, 0, backWall - 0.1f}, {halfWidth, roomHeight, backWall});
}

void Room::addFrontWall() {
    // The wall ends behind its frame, so that no two faces lie in one plane.
    constexpr float far = frontWall + wallDepth, behind = 0.01f, opening = windowHalfWidth + behind;
    add(Material::wall, {-halfWidth, 0, frontWall}, {-opening, roomHeight, far});
    add(Material::wall, {opening, 0, frontWall}, {halfWidth, roomHeight, far});
    add(Material::slats, {-opening, 0, frontWall}, {opening, windowSill - behind, far});
    add(Material::wall, {-opening, windowHead + behind, frontWall}, {opening, roomHeight, far});
    // The window's frame stands out a little and catches light.
    constexpr float edge = 0.045f, out = frontWall - 0.03f;
    add(Material::trim, {-windowHalfWidth - edge, windowSill - edge, out},
        {windowHalfWidth + edge, windowSill, far});
    add(Material::trim, {-windowHalfWidth - edge, windowHead, out},
        {windowHalfWidth + edge, windowHead + edge, far});
    for (const float side : {-1.0f, 1.0f}) {
        const float x = side * (windowHalfWidth + edge / 2);
        addTurned(Material::trim, {x, (windowSill + windowHead) / 2, (out + far) / 2},
                  {edge / 2, (windowHead - windowSill) / 2, (far - out) / 2}, 0);
        // Main monitors in their corners, turned to the listener, in a housing of slats.
        addTurned(Material::slats, {side * 1.93f, 1.35f, 3.80f}, {0.62f, 1.35f, 0.16f}, side * 27);
        addTurned(Material::monitor, {side * 1.79f, 1.60f, 3.60f}, {0.34f, 0.54f, 0.10f}, side * 27);
        // Light from the floor up the housings.
        lamps.push_back({{side * 1.85f - 0.3f, 0.05f, 3.35f}, {0, 0, 0.12f}, {0.6f, 0, 0}, teal * 5.0f});
    }
}

void Room::addLiveRoom() {
    constexpr float near = frontWall + wallDepth, far = 7.4f, half = 3.0f, height = 3.2f;
    add(Material::floor, {-half, -0.1f, near}, {half, 0, far});
    add(Material::liveWall, {-half, 0, far}, {half, height, far + 0.1f});
    add(Material::liveWall, {-half - 0.1f, 0, near}, {-half, height, far});
    add(Material::liveWall, {half, 0, near}, {half + 0.1f, height, far});
    add(Material::ceiling, {-half, height, near}, {half, height + 0.1f, far});
    // A screen between players, and two microphones.
    addTurned(Material::fabric, {-1.25f, 0.75f, 6.2f}, {0.6f, 0.75f, 0.05f}, -18);
    for (const float x : {0.22f, 0.98f}) {
        add(Material::metal, {x - 0.013f, 0, 5.78f}, {x + 0.013f, 1.52f, 5.81f});
        add(Material::metal, {x - 0.055f, 1.52f, 5.74f}, {x + 0.055f, 1.78f, 5.84f});
    }
    lamps.push_back({{-1.6f, height - 0.02f, 6.9f}, {3.2f, 0, 0}, {0, 0, 0.25f}, warm * 5.0f});
    lamps.push_back({{-0.4f, height - 0.02f, 5.2f}, {0.8f, 0, 0}, {0, 0, 0.8f}, warm * 1.2f});
}

void Room::addSides() {
    constexpr float depth = 0.09f, length = 0.86f, gap = 0.05f, bottom = 0.45f, top = 2.02f;
    for (const float side : {-1.0f, 1.0f}) {
        const float wall = side * halfWidth;
        float z = 0.35f;
        for (int panel = 0; panel < 3; ++panel, z += length + gap) {
            const float inner = wall - side * depth;
            add(Material::fabric, {std::min(wall, inner), bottom, z},
                {std::max(wall, inner), top, z + length});
            // A line of light in the gap behind each panel, level with their faces.
            const float middle = z + length + gap / 2, sunk = inner + side * 0.02f;
            add(Material::strip, {std::min(sunk, inner), bottom, middle - 0.011f},
                {std::max(sunk, inner), top, middle + 0.011f});
            // Before the panels' faces, so that it also falls on the room and not into the gap alone.
            const Vector up{0, top - bottom, 0}, along{0, 0, -side * 0.03f};
            lamps.push_back({{inner - side * 0.01f, bottom, middle + side * 0.015f}, up, along, teal * 9.0f});
        }
    }
}

void Room::addCeilingCloud() {
    constexpr float half = 1.35f, near = 0.6f, far = 3.25f, low = 2.42f, high = 2.50f;
    add(Material::slats, {-half, low, near}, {half, high, far});
    // Light hidden above its edges, thrown at the ceiling.
    constexpr float strip = 0.06f, y = high + 0.02f;
    constexpr Vector light = warm * 26.0f;
    lamps.push_back({{-half, y, far - strip}, {0, 0, strip}, {2 * half, 0, 0}, light});
    lamps.push_back({{-half, y, near}, {0, 0, far - near}, {strip, 0, 0}, light});
    lamps.push_back({{half - strip, y, near}, {0, 0, far - near}, {strip, 0, 0}, light});
}

void Room::addDesk() {
    constexpr float half = 1.75f;
    add(Material::desk, {-half, 0.70f, 0.2f}, {half, 0.82f, 1.62f});
    add(Material::bridge, {-half, 0.70f, 1.62f}, {half, 0.965f, 1.80f});
    add(Material::trim, {-half - 0.03f, 0.70f, 0.2f}, {-half, 0.985f, 1.82f});
    add(Material::trim, {half, 0.70f, 0.2f}, {half + 0.03f, 0.985f, 1.82f});
    add(Material::trim, {-half, 0.965f, 1.60f}, {half, 0.978f, 1.82f});
    // What comes from behind the chair, where somebody left a light on.
    lamps.push_back({{-1.6f, 2.5f, -1.6f}, {3.2f, 0, 0}, {0, 0.4f, -0.9f}, {0.62f, 0.80f, 0.86f}});
    lamps.push_back({{-half, 0.985f, 1.55f}, {2 * half, 0, 0}, {0, -0.04f, 0.03f}, teal * 0.35f});
}

bool Room::crosses(const Box& box, const Ray& ray, float limit, Crossing& crossing) noexcept {
    const auto toLocal = [&box](const Vector& v) noexcept {
        return Vector{v.x * box.cosine - v.z * box.sine, v.y, v.x * box.sine + v.z * box.cosine};
    };
    const Vector origin = toLocal(ray.origin - box.middle), direction = toLocal(ray.direction);
    float enter = -std::numeric_limits<float>::infinity(), leave = std::numeric_limits<float>::infinity();
    int enterAxis = 0;
    const float origins[]{origin.x, origin.y, origin.z}, halves[]{box.half.x, box.half.y, box.half.z};
    const float directions[]{direction.x, direction.y, direction.z};
    for (int axis = 0; axis < 3; ++axis) {
        const float inverse = 1.0f / directions[axis];
        const float near = (-std::copysign(halves[axis], inverse) - origins[axis]) * inverse;
        const float far = (std::copysign(halves[axis], inverse) - origins[axis]) * inverse;
        if (near > enter) {
            enter = near;
            enterAxis = axis;
        }
        leave = std::min(leave, far);
    }
    // Nobody looks from inside a box.
    if (!(enter < leave) || enter < 1e-4f || enter >= limit)
        return false;
    crossing.distance = enter;
    crossing.local = origin + direction * enter;
    const float sign = directions[enterAxis] > 0 ? -1.0f : 1.0f;
    crossing.normal = {enterAxis == 0 ? sign : 0, enterAxis == 1 ? sign : 0, enterAxis == 2 ? sign : 0};
    return true;
}

std::optional<Hit> Room::nearest(const Ray& ray) const {
    const Box* found = nullptr;
    Crossing crossing{}, closest{};
    float limit = 100;
    for (const Box& box : boxes)
        if (crosses(box, ray, limit, crossing)) {
            found = &box;
            closest = crossing;
            limit = crossing.distance;
        }
    if (found == nullptr)
        return std::nullopt;
    const Vector& n = closest.normal;
    Hit hit;
    hit.distance = closest.distance;
    hit.point = ray.origin + ray.direction * closest.distance;
    hit.normal = {n.x * found->cosine + n.z * found->sine, n.y, -n.x * found->sine + n.z * found->cosine};
    hit.surface = surfaceOf(*found, closest, hit.point);
    return hit;
}

bool Room::clear(const Ray& ray, float distance) const noexcept {
    Crossing crossing{};
    return std::ranges::none_of(
        boxes, [&](const Box& box) { return crosses(box, ray, distance - 1e-3f, crossing); });
}

Surface Room::surfaceOf(const Box& box, const Crossing& crossing, const Vector& point) {
    const Vector& local = crossing.local;
    switch (box.material) {
    case Material::wall:
        return {{0.16f, 0.19f, 0.20f}, {}, 0, 0};
    case Material::ceiling:
        return {{0.24f, 0.26f, 0.27f}, {}, 0, 0};
    case Material::floor:
        return textures::floorBoards(point);
    case Material::fabric:
        return textures::fabric(point);
    case Material::slats:
        return textures::slats(local.x);
    case Material::trim:
        return {{0.10f, 0.11f, 0.11f}, {}, 0.04f, 0.25f};
    case Material::monitor:
        return textures::monitorFront(local, box.half, crossing.normal.z < 0);
    case Material::desk:
        return textures::desk(point, crossing.normal.y > 0);
    case Material::bridge:
        return textures::meterBridge(point, crossing.normal.z < 0);
    case Material::liveWall:
        return textures::liveWall(point);
    case Material::metal:
        return {{0.05f, 0.05f, 0.05f}, {}, 0.2f, 0.3f};
    case Material::strip:
        return {{0.3f, 0.3f, 0.3f}, teal * 0.34f, 0, 0};
    }
    return {{0.1f, 0.1f, 0.1f}, {}, 0, 0};
}

} // namespace orvane::kestrum::pictures
