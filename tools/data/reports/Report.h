// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/HrirBuilder.h"

#include <filesystem>
#include <string>

namespace orvane::kestrum::tools {

/// Writes "index.html" with a plain verdict, every figure beside its goal, and plots as SVG beside the tables
/// they are drawn from. The plots are drawn by the program gnuplot.
/// @param chapter HTML that comes in front of the origin, its pictures inside it.
/// @throws DataError when the folder cannot be written or gnuplot is not installed.
void writeReport(const BuiltSet& built, const std::string& about, const std::filesystem::path& folder,
                 const std::string& chapter = {});

} // namespace orvane::kestrum::tools
