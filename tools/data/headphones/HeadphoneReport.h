// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/headphones/HeadphoneFold.h"

#include <filesystem>
#include <iosfwd>
#include <string>

namespace orvane::kestrum::tools {

/// Says band by band what was wanted and what the short responses of the head made of it, where the limits came in, and
/// from where on the head follows.
void tellFold(const Headphones& headphones, const FoldReport& report, std::ostream& out);

/// The same as HTML, with a plot drawn in the folder of the report.
/// @throws DataError when the folder cannot be written or gnuplot is not installed.
std::string headphoneChapter(const Headphones& headphones, const FoldReport& report,
                             const std::filesystem::path& folder);

} // namespace orvane::kestrum::tools
