// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/measures/RoomMeasures.h"

#include <cstddef>
#include <cstdint>

namespace orvane::kestrum::tools {

/// Noise of equal power in every octave from 20 Hz to the Nyquist frequency, root mean square 1. It repeats without
/// a seam. Equal seeds give the same noise: the same bits on the same
/// machine and libraries, elsewhere the same to rounding.
/// @param length a power of two.
Samples pinkNoise(std::size_t length, double sampleRate, std::uint32_t seed);

/// Integrated loudness of a stereo signal in LUFS, by ITU-R BS.1770; minus infinity for silence.
/// @throws DataError when the meter does not work at this rate.
double integratedLoudness(const EarResponses& signal, double sampleRate);

} // namespace orvane::kestrum::tools
