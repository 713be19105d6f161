// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/measures/RoomMeasures.h"

#include <cstddef>
#include <filesystem>

namespace orvane::kestrum::tools {

/// A measured impulse response of a room, from the direct sound on.
struct ImpulseFile {
    EarResponses ears;         ///< At masterSampleRate; sample 0 is the direct sound's onset; alike for mono.
    bool binaural = false;     ///< Two channels that differ.
    bool dualMono = false;     ///< Two channels that do not.
    double sampleRate = 0;     ///< Of the file, in hertz.
    double seconds = 0;        ///< Of the file.
    double secondsToOnset = 0; ///< From the file's start to the direct sound.
    double cutAtSeconds = 0;   ///< Where the rest of a long file was left out; 0 where nothing was.
};

/// Reads mono or stereo in any format of libsndfile, resamples it to masterSampleRate and finds the direct sound.
///
/// @throws DataError with the remedy for a file that cannot be read, has more than two channels, an unusable rate, less than
///         0.1 s behind the direct sound, samples that are no numbers, nothing or nothing in one channel, or tops cut off.
ImpulseFile readImpulseFile(const std::filesystem::path& file);

} // namespace orvane::kestrum::tools
