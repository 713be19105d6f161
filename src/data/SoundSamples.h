// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <span>
#include <string>
#include <system_error>

namespace orvane {

/// The largest sample that a response may have, 120 dB over full scale. Measured ones stay below 20 dB; what is
/// larger or no number is damage, and would reach the ears, or stay in a filter for ever.
inline constexpr float largestResponseSample = 1e6f;

/// Whether every sample read from a file is a number that can be a response's.
inline bool areSound(std::span<const float> samples) noexcept {
    return std::ranges::all_of(
        samples, [](float sample) { return std::abs(sample) <= largestResponseSample; }); // no NaN is
}

/// Whether what lies under a path is something else than a file. Opening a pipe would wait for whoever writes to
/// it, and a device may never end. What cannot be looked at is left to the opening.
inline bool isNoFile(const std::string& path) {
    std::error_code unknown;
    const auto status = std::filesystem::status(path, unknown);
    return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
}

} // namespace orvane
