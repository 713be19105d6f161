// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/Spectra.h"
#include "data/head/Grid.h"

#include <array>
#include <filesystem>
#include <vector>

namespace orvane::kestrum::tools {

/// The content of one of the three files.
struct ResponseSet {
    ResponseFile file;
    std::vector<std::array<Samples, 2>> responses; ///< [2522][2][file.length], in the order of gridPlaces().
};

/// Writes the set as the product reads it: a canonical 44-byte RIFF/WAVE header, 32-bit float, interleaved
/// stereo, response after response. Written beside the target and renamed, so that a reader never meets half
/// a file.
/// @throws DataError when the folder cannot be written.
void writeResponseSet(const ResponseSet& set, const std::filesystem::path& folder);

/// Reads such a file back, 32-bit float or 16-bit integer, every length checked before use.
/// @throws DataError that names the first thing wrong with the file.
ResponseSet readResponseSet(const ResponseFile& file, const std::filesystem::path& folder);

} // namespace orvane::kestrum::tools
