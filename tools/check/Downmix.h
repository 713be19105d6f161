// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

namespace orvane::kestrum::check {

/// What one loudspeaker's channel adds to the two channels of a plain stereo downmix.
struct DownmixGains {
    float left = 0;
    float right = 0;
};

/// The downmix that a listener without the plug-in would hear, one row per channel of the layout.
///
///     place                                   to its own side   to both    from
///     left, right                             0 dB                         ITU-R BS.775
///     centre                                                    -3 dB      ITU-R BS.775
///     surrounds at 110 degrees                -3 dB                        ITU-R BS.775
///     low frequencies                         left out                     ITU-R BS.775
///     inside and wide of left and right       0 dB (to 60 degrees)         ours
///     at 90 degrees, and beyond 110           -3 dB                        ours
///     straight behind                                           -6 dB      ours
///     above, on a side                        -3 dB                        ours
///     above, in the middle                                      -6 dB      ours
///
/// A layout of two channels is stereo already and passes as it is. -3 dB is a factor of 0.7071, -6 dB one of 0.5.
/// @throws CheckError when there is no such layout.
std::vector<DownmixGains> downmixGains(std::string_view layout);

/// Writes the downmix of a mix as a stereo WAV file of the same length.
/// @throws render::RenderError when a file cannot be read or written.
void writeDownmix(const std::filesystem::path& mix, std::string_view layout,
                  const std::filesystem::path& output);

} // namespace orvane::kestrum::check
