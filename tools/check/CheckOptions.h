// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace orvane::kestrum::check {

/// What was asked for on the command line.
struct CheckOptions {
    std::filesystem::path mix;
    std::filesystem::path folder;
    std::optional<std::string> layout;
    double loudness = -23; ///< LUFS that all copies are brought to.
    std::optional<unsigned> processes;
    std::optional<std::filesystem::path> plugin;
    bool listJobs = false;
    bool replace = false;
};

} // namespace orvane::kestrum::check
