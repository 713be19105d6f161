// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace test {

/// What of the hardening a built program or module lacks, as readelf tells it, one plain sentence each; none when all is there.
/// A program also has to be position-independent, which a module is by nature.
std::vector<std::string> weaknessesOf(const std::filesystem::path& file);

} // namespace test
