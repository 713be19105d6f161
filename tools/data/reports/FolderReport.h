// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/measures/SceneProbe.h"

#include <filesystem>
#include <iosfwd>
#include <string_view>
#include <vector>

namespace orvane::kestrum::tools {

/// What a report on a data folder looks at.
struct FolderReportOptions {
    std::vector<std::string_view> scenes; ///< All sixteen where empty.
    ProbeSettings probe;
    std::size_t noiseLength = 262144; ///< Samples of pink noise, a power of two: 5.5 s at 48 kHz.
};

/// Writes "index.html", one page with everything in it: the rooms' figures beside their targets, their loudness, per
/// Scene the measures of its rendered impulse, and plots of the head's responses. The numbers behind the plots lie in
/// "plots". Every file that is missing or damaged is named at the top, with its remedy; where the rooms cannot be relied
/// on the page shows the head alone.
///
/// @param out told about each such file and each Scene as it is done.
/// @throws DataError when `data` holds no sound responses of a head, `folder` cannot be written, or gnuplot is missing
///         or fails.
void writeFolderReport(const std::filesystem::path& data, const std::filesystem::path& folder,
                       const FolderReportOptions& options, std::ostream& out);

} // namespace orvane::kestrum::tools
