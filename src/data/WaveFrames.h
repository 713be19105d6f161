// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

namespace orvane {

class IIrFile;

/// Fills the front of `samples` from the WAV file that `file` describes.
///
/// Only the fields that matter are looked at: channels at byte 22, bits per sample at 34, and the data chunk.
/// Deliberate: the data chunk is found as the first letter 'd' at or after byte 36, not by walking chunks,
/// and 32 bits are taken as floats whatever the format tag says.
///
/// Shape   samples [at least frames * channels], not resized; frames interleaved.
/// Thread  any, several at once; reads a file.
/// Errors  throws, in this order of checks: sampleRateFileNotFoundException when the file does not open,
///         numberOfChannelsMismatchException, wavNotReadableException when the file ends inside its header or
///         has no data chunk, wavChunckSizeShortException when the chunk claims fewer samples than wanted or
///         the file ends before them, wavBitWrongException when a sample is neither 32 nor 16 bits.
void readWaveFrames(const IIrFile& file, std::vector<float>& samples, std::uint64_t frames,
                    std::uint16_t channels);

} // namespace orvane
