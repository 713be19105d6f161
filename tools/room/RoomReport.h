// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/measures/SceneMeasures.h"
#include "data/rooms/ReverbCalibration.h"
#include "room/OwnRoom.h"

#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace orvane::kestrum::tools {

/// How far the direct sound over all the rest may lie from what was wanted.
inline constexpr double directToleranceDb = 1;

/// How a user's room measures in the new folder, rendered through the plug-in's own engine.
struct RoomFindings {
    SceneMeasures measures;
    std::optional<SceneFigures> plainLevel; ///< Without the headphones, where some are folded in.
    std::vector<CoherenceBand> coherence;   ///< Of the reverb, from the mixing time on.
    std::vector<CoherenceBand> headField;   ///< Of the head, in a diffuse field.
    double peakDb = 0;                      ///< Of the stored response.

    /// The figures that the level is judged by: with headphones those without them, which alone it can follow.
    double directToRestDb() const;
    double clarity50Db() const;

    bool decayWithin(std::size_t octave, const OwnRoom& room) const;
    bool directWithin(const OwnRoom& room) const;
    bool clarityWithin(const OwnRoom& room) const; ///< Always where clarity was not asked.

    /// What was wanted and is not met, as a list: length, decays, coherences, direct sound, clarity; empty when all is.
    std::string missed(const OwnRoom& room) const;
};

/// @param plainLevel none where the folder has no headphones folded in.
/// @param head       without headphones.
/// @param folder     the new data folder.
RoomFindings findRoom(const OwnRoom& room, const std::optional<SceneFigures>& plainLevel,
                      const DiffuseHead& head, const std::filesystem::path& folder);

/// Tells what was found on the terminal.
void tellRoom(const OwnRoom& room, const RoomFindings& findings, std::ostream& out);

/// Writes "index.html" with the same and its plots; the numbers behind them lie in "plots".
/// @throws DataError when the folder cannot be written, or gnuplot is missing or fails.
void writeRoomReport(const OwnRoom& room, const RoomFindings& findings, const std::filesystem::path& folder);

} // namespace orvane::kestrum::tools
