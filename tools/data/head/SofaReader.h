// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/MeasuredSet.h"

#include <chrono>
#include <filesystem>

namespace orvane::kestrum::tools {

/// Reads the responses of a SOFA file of the convention SimpleFreeFieldHRIR as they were measured: nothing is
/// normalised or resampled. Broadband delays that the file keeps apart are put back into the responses. The
/// receivers stay in the order of the file.
///
/// Thread  as readSofaContent(): the program's only one.
/// Source  AES69-2022 for the convention; its azimuth counts to the left and is negated here.
/// @param limit after which a file that is still not taken apart is given up.
/// @throws DataError when the file cannot be read or is of another kind.
MeasuredSet readSofa(const std::filesystem::path& file,
                     std::chrono::milliseconds limit = std::chrono::minutes(1));

} // namespace orvane::kestrum::tools
