// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/IFileReader.h"

namespace orvane {

/// The reverb container: 2 bytes that are not read, a table of 32-bit offsets in stereo frames from the
/// table's end, then stereo frames of 32-bit floats. Little-endian. Stateless.
///
/// Positions are computed in 64 bits: whatever the table says, a start outside the file gives zeros. A file
/// that ends before the entry of the table is not readable, nor is one with samples that are not sound
/// (SoundSamples.h) or that the system fails to read.
/// Deliberate: entry 0, which rooms without a reverb ask for, gives zeros, but the file has to be there.
class FileReader final : public IFileReader {
public:
    std::vector<float> read(const std::string& path, std::uint64_t floatCount, std::uint32_t tableSize,
                            std::uint32_t entry) const override;
};

} // namespace orvane
