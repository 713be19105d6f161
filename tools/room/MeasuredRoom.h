// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "room/ImpulseFile.h"
#include "room/RoomStatistics.h"

#include <array>
#include <vector>

namespace orvane::kestrum::tools {

/// What an impulse response says about its room.
struct MeasuredRoom {
    ImpulseFile file;
    OctaveTimes t60{}; ///< Seconds; octaves that the file does not tell follow their neighbours.
    std::array<bool, roomOctavesHz.size()> told{}; ///< Whether the file tells an octave's decay.
    OctaveTimes
        kneeSeconds{};    ///< Where an octave's decay meets the file's noise or end, behind the direct sound.
    OctaveTimes kneeDb{}; ///< How far the octave has decayed there, as a positive number.
    double directOverRestDb = 0;
    double clarity50Db = 0;
    std::vector<CoherenceBand> coherence; ///< From the mixing time on; empty unless the file is binaural.
};

/// Measures a response, noise behind its decay left out.
/// @param mixingMs behind the direct sound.
/// @throws DataError when the decay from 500 Hz to 2 kHz does not stand far enough above the noise to be told.
MeasuredRoom measureRoom(ImpulseFile file, double mixingMs);

} // namespace orvane::kestrum::tools
