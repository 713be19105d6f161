// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "track/Rotation.h"
#include "track/Sample.h"

#include <array>
#include <cstddef>
#include <optional>
#include <ostream>
#include <span>
#include <string_view>
#include <vector>

namespace orvane::kestrum::track {

/// What the arguments of a message are, in their order.
enum class Arguments {
    yawPitchRoll,
    rollPitchYaw,
    pitchYawRoll,
    pitchRollYaw,
    personPlacePitchYawRoll, ///< Four numbers that are not used, then three angles.
    yaw,
    pitch,
    roll,
    quaternion,    ///< w x y z
    rotationVector ///< x y z, perhaps w, perhaps an accuracy
};

/// The axes of a quaternion's x, y and z.
enum class Axes {
    none,
    aheadLeftUp,  ///< As in Ambisonics; right-handed.
    rightUpAhead, ///< As in Unity; left-handed.
    rightAheadUp ///< As Android has them for a phone that lies on the head, screen up, top ahead; right-handed.
};

/// Whose turn is told. For angles the signs below hold it already.
enum class Turned { head, scene };

/// One way in which trackers put a head's direction into an OSC message.
struct Dialect {
    std::string_view address;
    std::string_view family; ///< Rows that make up one direction together share it.
    Arguments arguments;
    double degreesPerUnit;    ///< Angles only.
    std::array<int, 3> signs; ///< Angles only: yaw, pitch, roll; +1 where the sender's sign is HeadAngles'.
    Axes axes = Axes::none;   ///< Quaternions only.
    Turned turned = Turned::head; ///< Quaternions only.
    std::string_view convention;  ///< In words.
    std::string_view source;      ///< Where sender or receiver documents it.
};

/// All of them. An earlier row is believed rather than a later one when one sender speaks several at once.
std::span<const Dialect> dialects();

/// Null for an address that is none of theirs.
const Dialect* findDialect(std::string_view address);

/// The table in Markdown.
void writeDialects(std::ostream& out);

/// What the user knows better about a sender.
struct Correction {
    std::array<int, 3> signs{1, 1, 1}; ///< -1 turns the sender's yaw, pitch or roll about.
    bool inverted =
        false; ///< The sender tells the scene's turn for the head's, or the head's for the scene's.
};

/// Makes directions of messages. Holds what senders of single angles have said so far.
class DialectReader {
public:
    explicit DialectReader(const Correction& correction = {}) : correction(correction) {}

    /// @param sender whose single angles make up one direction; its family is the dialect's.
    /// @param values the message's numbers.
    /// @return empty when they are too few, not finite or no rotation.
    std::optional<Rotation> read(const Dialect& dialect, const Source& sender,
                                 std::span<const double> values);

private:
    std::optional<Rotation> readAngles(const Dialect& dialect, const Source& sender,
                                       std::span<const double> values);
    std::optional<Rotation> readQuaternion(const Dialect& dialect, std::span<const double> values) const;

    struct Held {
        Source sender;
        HeadAngles angles;
    };
    HeadAngles& heldAngles(const Source& sender);

    Correction correction;
    std::vector<Held> held; ///< Of senders of single angles; the one that was heard last stands last.
};

/// Applies a correction to angles that have HeadAngles' signs.
Rotation corrected(const HeadAngles& angles, const Correction& correction);

} // namespace orvane::kestrum::track
