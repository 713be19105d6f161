// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace orvane::kestrum::tools {

/// What "kestrum room" was asked for. Exactly one of `t60` and `response` is given.
struct RoomRequest {
    std::filesystem::path data;     ///< Head and rooms to begin with; only read. Empty for the plug-in's own.
    std::filesystem::path out;      ///< The new folder; must not hold anything yet. Or none:
    std::string name;               ///< of a new set among the machine's, in place of a folder.
    std::filesystem::path report;   ///< Empty for no report.
    std::string scene;              ///< The Scene that is to play the room.
    std::vector<double> t60;        ///< Seconds: one for the middle, or seven from 125 Hz to 8 kHz.
    std::filesystem::path response; ///< A measured impulse response.
    std::optional<double> volume;   ///< Cubic metres.
    std::vector<double> walls;      ///< Metres from the listener: front, back, left, right, ceiling, floor.
    std::optional<double> distance; ///< Metres from the listener to the loudspeakers.
    double directivityDb = 7;       ///< Of the loudspeakers, towards the listener.
    std::optional<double> directOverRestDb; ///< Wanted level in place of the reckoned or measured one.
    bool headCoherence = false;             ///< The head's coherence even for a binaural response.
};

} // namespace orvane::kestrum::tools
