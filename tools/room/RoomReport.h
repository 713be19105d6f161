// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/ReverbCalibration.h"
#include "data/SceneMeasures.h"
#include "room/OwnRoom.h"

#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

namespace orvane::kestrum::tools {

/// How a user's room measures in the new folder, rendered through the plug-in's own engine.
struct RoomFindings {
    SceneMeasures measures;
    std::vector<CoherenceBand> coherence; ///< Of the reverb, from the mixing time on.
    std::vector<CoherenceBand> headField; ///< Of the head, in a diffuse field.
    double levelDb = 0;                   ///< The stored response's peak.

    bool decayWithin(std::size_t octave, const OwnRoom& room) const;
    std::string
    missed(const OwnRoom& room) const; ///< Decays and coherences that are not; empty when all are.
};

/// @param folder the new data folder.
RoomFindings findRoom(const OwnRoom& room, const SceneFigures& level, const DiffuseHead& head,
                      const std::filesystem::path& folder);

/// Tells what was found on the terminal.
void tellRoom(const OwnRoom& room, const RoomFindings& findings, std::ostream& out);

/// Writes "index.html" with the same and its plots; the numbers behind them lie in "plots".
/// @throws DataError when the folder cannot be written, or gnuplot is missing or fails.
void writeRoomReport(const OwnRoom& room, const RoomFindings& findings, const std::filesystem::path& folder);

} // namespace orvane::kestrum::tools
