// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/IFileReader.h"

namespace orvane {

/// Reads the container of reverb responses. Little-endian throughout:
///
///     2 bytes          not read
///     4 * tableSize    entry k, counted from 1: where response k starts, in frames from the table's end
///     8 per frame      32-bit float left, 32-bit float right
///
/// The container does not say how long a response is; the caller knows.
///
/// Thread  any, several at once; stateless. Reads a file.
/// Errors  every position is computed in 64 bits and a start that lies outside the file gives zeros, so a
///         damaged table can neither overflow nor lead outside.
class FileReader final : public IFileReader {
public:
    std::vector<float> read(const std::string& path, std::uint64_t floatCount, std::uint32_t tableSize,
                            std::uint32_t entry) const override;
};

} // namespace orvane
