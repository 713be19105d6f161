// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "doctor/Places.h"

#include <string>

namespace orvane::kestrum::doctor {

/// The commands that mend an installation, according to how it was made: Debian packages, the tar ball, or the sources.
std::string reinstallPlugin(const Places& places);
std::string reinstallData(const Places& places);
std::string reinstallManual(const Places& places);

/// The packaged set, when it is there, else a new one.
std::string mendData(const Places& places);

/// Lets everybody read a file or enter a folder.
std::string openUp(const std::filesystem::path& closed);

/// Takes a bundle away, by the package manager if it is a package's.
std::string removal(const std::filesystem::path& bundle, const Places& places);

} // namespace orvane::kestrum::doctor
