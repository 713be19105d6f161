// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/RealtimeReflectionMechanic.h"

#include "base/Angles.h"
#include "parameters/SourcePosition.h"
#include "room/ReflectionAngles.h"
#include "room/ReflectionTemplate.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>

namespace orvane {

namespace {

constexpr std::size_t wallCount = 6;
constexpr std::uint64_t realtimeLength = 8192; // samples at 44100 Hz
constexpr float nearestWall = 0.1f;            // metres; a wall below is not there
constexpr std::uint32_t quietNan = 0xFFC00000;

/// The source as the walls see it. Metres; angles in degrees, azimuth counted to the left.
struct Source {
    float distance;
    float azimuth;
    float elevation;
    float absCos; ///< Of the azimuth.
    float absSin;
    float front; ///< Ahead of the listener.
    float side;
    float up;
};

/// How one wall answers.
struct Bounce {
    std::int32_t azimuth; ///< Whole degrees.
    float path;           ///< Metres, for the level.
    float detour;         ///< Metres, for the delay; its sign does not matter.
};

Source sourceOf(const ISpatialParameterSetView& view) noexcept {
    const SpatialPosition position = sourcePosition(view);
    Source source{};
    source.distance = position.distance;
    source.azimuth = -position.azimuth;
    source.elevation = position.elevation;
    const float c = std::cos(radiansOf(source.azimuth));
    const float s = std::sin(radiansOf(source.azimuth));
    const float ce = std::cos(radiansOf(source.elevation));
    const float se = std::sin(radiansOf(source.elevation));
    source.absCos = std::abs(c);
    source.absSin = std::abs(s);
    source.front = c * source.distance * ce;
    source.side = s * source.distance * ce;
    source.up = se * source.distance;
    return source;
}

float acosDegrees(float value) noexcept { return std::acos(value) * 180.0f / pi; }

std::int32_t truncated(float value) noexcept { return static_cast<std::int32_t>(value); }

/// Half the way from a source to a wall and back: the hypotenuse to the wall's midpoint.
float halfPath(float offset, float wall) noexcept {
    const float half = offset / 2.0f;
    return std::sqrt(half * half + wall * wall);
}

Bounce ceilingOrFloor(const Source& source, float wall, std::int32_t designedAzimuth) noexcept {
    const float path = 2.0f * halfPath(source.distance, wall);
    return {truncated(static_cast<float>(designedAzimuth) + source.azimuth), path, path - source.distance};
}

/// Where the mirrored source stands aside of straight ahead.
std::int32_t sidewaysAngle(const Source& source, float wall) noexcept {
    return truncated(90.0f - acosDegrees(source.side / (2.0f * halfPath(source.side, wall))));
}

Bounce frontWall(const Source& source, float wall) noexcept {
    const float detour = 2.0f * wall - source.front;
    return {sidewaysAngle(source, wall), std::abs(detour), detour};
}

Bounce backWall(const Source& source, float wall) noexcept {
    const float detour = 2.0f * wall + source.front;
    const std::int32_t behind = source.azimuth > 0.0f ? 180 : -180;
    return {behind - sidewaysAngle(source, wall), std::abs(detour) + source.distance, detour};
}

/// @param side +1 for the wall at positive angles, -1 for the other one.
Bounce sideWall(const Source& source, float wall, std::int32_t side) noexcept {
    const float d = source.distance;
    const float h = 2.0f * halfPath(d, wall) - d;
    const float angle = acosDegrees(d / (h + d));
    const float base = angle * (1.0f - source.absSin) + source.absSin * 90.0f;
    std::int32_t azimuth = truncated(static_cast<float>(side) * base);
    const bool isBehind = std::abs(source.azimuth) > 90.0f;
    if (isBehind)
        azimuth -= (azimuth - side * 90) * 2;
    const bool leansHere = static_cast<float>(side) * source.azimuth > 0.0f;
    const float width = leansHere ? wall - d : wall;
    const float detour = source.absCos * source.absCos * h + 2.0f * (source.absSin * source.absSin) * width;
    return {azimuth, std::abs(detour) + d, detour};
}

/// In the order of the list: ceiling, floor, front, back, right, left.
Bounce bounceOf(std::size_t wall, float distance, const Source& source,
                std::int32_t designedAzimuth) noexcept {
    switch (wall) {
    case 0:
    case 1:
        return ceilingOrFloor(source, distance, designedAzimuth);
    case 2:
        return frontWall(source, distance);
    case 3:
        return backWall(source, distance);
    case 4:
        return sideWall(source, distance, 1);
    default:
        return sideWall(source, distance, -1);
    }
}

} // namespace

RealtimeReflectionMechanic::RealtimeReflectionMechanic(const IReflectionPresetFactory& presetFactory,
                                                       float sampleRate, std::int32_t roomId)
    : sampleRate(sampleRate),
      samplesPerMetre(samplesPerMetreAt(sampleRate)),
      roomId(roomId),
      ceilingDistance(std::bit_cast<float>(quietNan)),
      floorDistance(ceilingDistance),
      frontDistance(ceilingDistance),
      backDistance(ceilingDistance),
      rightDistance(ceilingDistance),
      leftDistance(ceilingDistance) {
    const ReflectionPreset preset = presetFactory.create(roomId);
    reflectionTemplate = reflectionTemplateOf(preset, sampleRate);
    presetGain = preset.gain;
}

ReflectionList RealtimeReflectionMechanic::reflections() const {
    const std::size_t count = std::min(wallCount, reflectionTemplate.size());
    ReflectionList list(count);
    for (std::size_t i = 0; i < count; ++i)
        list.push(reflectionTemplate[i]);
    return list;
}

void RealtimeReflectionMechanic::update(ReflectionList& reflections, const ISpatialParameterSetView& view,
                                        std::int32_t maxDelay) {
    const Source source = sourceOf(view);
    const bool moved = takeWalls(view);
    const float common = commonReflectionGain(view, presetGain);
    const std::array<float, wallCount> walls{ceilingDistance, floorDistance, frontDistance,
                                             backDistance,    rightDistance, leftDistance};
    const std::array<float, wallCount> sourceTowards{source.up,     -source.up,  source.front,
                                                     -source.front, source.side, -source.side};
    for (std::size_t i = 0; i < reflections.size(); ++i) {
        const Reflection& designed = reflectionTemplate[i];
        Reflection& out = reflections[i];
        out.active = walls[i] > sourceTowards[i] && walls[i] >= nearestWall;
        if (out.active) {
            const Bounce bounce = bounceOf(i, walls[i], source, designed.azimuth);
            out.azimuth = wrapAzimuth(bounce.azimuth);
            out.elevation =
                clampElevation(truncated(static_cast<float>(designed.elevation) + source.elevation));
            // Deliberate: a source that moves takes its reflections' directions and levels along, not their
            // delays. A wall that comes in without having moved keeps the delay of the design.
            if (moved)
                out.delay = truncated(std::abs(bounce.detour * samplesPerMetre));
            const float distanceGain = roomId <= 1 ? 1.0f : std::min(1.0f / bounce.path, 1.0f);
            out.gain = distanceGain * designed.gain * common;
        }
        out.delay = foldDelay(out.delay, maxDelay);
    }
}

std::uint64_t RealtimeReflectionMechanic::length() const noexcept { return realtimeLength; }

std::uint64_t RealtimeReflectionMechanic::scaledLength() const noexcept {
    return scaledToRate(realtimeLength, sampleRate);
}

bool RealtimeReflectionMechanic::takeWalls(const ISpatialParameterSetView& view) noexcept {
    const auto take = [](float& stored, float now) {
        const bool differs = stored != now;
        stored = now;
        return differs;
    };
    // Every wall is taken, whichever of them has moved.
    bool moved = take(frontDistance, view.getFrontDistance());
    moved |= take(backDistance, view.getBackDistance());
    moved |= take(rightDistance, view.getRightDistance());
    moved |= take(leftDistance, view.getLeftDistance());
    moved |= take(ceilingDistance, view.getCeilingDistance());
    moved |= take(floorDistance, view.getFloorDistance());
    return moved;
}

} // namespace orvane
