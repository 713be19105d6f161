// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/IIrFile.h"

#include <cstdint>
#include <vector>

namespace orvane {

/// Fills the front of `samples` with the first `frames` frames of a RIFF/WAVE file: 16-bit integers scaled by
/// 1/32768, or 32-bit floats unchanged.
///
/// Shape   samples [at least frames * channels], interleaved.
/// Errors  every byte of the file is taken as hostile. sampleRateFileNotFoundException: no such file;
///         numberOfChannelsMismatchException; wavChunckSizeShortException: the data chunk says it is too
///         short; wavBitWrongException: neither 16 nor 32 bits; wavNotReadableException: anything else, a
///         file that ends too early, or that the system fails to read, included.
void readWaveFrames(const IIrFile& file, std::vector<float>& samples, std::uint64_t frames,
                    std::uint16_t channels);

/// Spreads interleaved frames in place from a stored rate to a running rate that is a multiple of it: each
/// frame at `toRate / fromRate` times its old position, zeros between. No scaling, no filter.
///
/// Shape   samples [grown frames * channels]: the stored frames at the front, zeros behind.
void zeroStuff(std::vector<float>& samples, std::int32_t fromRate, std::int32_t toRate,
               std::uint16_t channels);

} // namespace orvane
