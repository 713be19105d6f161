// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace orvane::kestrum::check {

/// The page's sound in pieces that can be decoded alone, whichever place the listener jumps to.
///
///     window k      |--lead--|------------- windowFrames -------------|--trail--|--margin--|
///     window k + 1                                           |--lead--|------------- ...
///
/// The lead lets the decoder settle before its sound counts; over the trail the player fades from one window to the next.
/// The margin takes the codec's last frame, which an end spoils. Window 0 has a lead of silence.
namespace windows {
inline constexpr unsigned sampleRate = 48000; ///< The codec's own.
inline constexpr std::uint64_t windowFrames = 4 * sampleRate;
inline constexpr std::uint64_t leadFrames = sampleRate / 10;
inline constexpr std::uint64_t trailFrames = sampleRate / 50;
inline constexpr std::uint64_t marginFrames = sampleRate / 20;
inline constexpr std::uint64_t encodedFrames = leadFrames + windowFrames + trailFrames + marginFrames;
} // namespace windows

/// Makes the windows of one track.
///
/// Shape   input [frames][2] interleaved at the rate of construction.
/// Errors  CheckError when the resampler or the codec refuses.
class SoundWindows {
public:
    explicit SoundWindows(unsigned sampleRate);
    ~SoundWindows();

    void add(std::span<const float> interleaved);
    /// @return one Ogg Opus file per window, as base64; together they hold the whole track, and silence behind it.
    std::vector<std::string> finish();

private:
    void encodeWholeWindows();

    struct Resampler;
    std::unique_ptr<Resampler> resampler;
    std::vector<float> held; ///< From the lead of the next window on, interleaved.
    std::vector<std::string> done;
};

/// Stereo frames as one Ogg Opus file; the same frames give the same bytes. @throws CheckError when the codec refuses.
std::string encodeOpus(std::span<const float> interleaved);

} // namespace orvane::kestrum::check
