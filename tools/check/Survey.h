// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>

namespace orvane::kestrum::check {

/// The longest mix that one page holds. Its sound is the greater part of the page: ten minutes make about 300 MB, near
/// what browsers open from disk without complaint.
inline constexpr double longestMixSeconds = 600;

/// What the head of a mix's file tells.
struct Mix {
    std::filesystem::path path; ///< Absolute.
    unsigned channelCount = 0;
    unsigned sampleRate = 0;
    std::uint64_t frameCount = 0;

    double seconds() const { return static_cast<double>(frameCount) / sampleRate; }
};

/// @throws CheckError when it is too long or has more channels than a bus; render::RenderError when it cannot be read.
Mix openMix(const std::filesystem::path& path);

/// Reads the whole file, since one value that is no number would spoil every rendering from there on.
/// @throws CheckError when the mix holds such a value or is silent; render::RenderError when it is cut off.
void requireSound(const Mix& mix);

} // namespace orvane::kestrum::check
