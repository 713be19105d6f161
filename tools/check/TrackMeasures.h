// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <optional>
#include <vector>

namespace orvane::kestrum::check {

/// What the page shows of one stereo file, as it was rendered.
struct TrackMeasures {
    std::optional<double> loudness; ///< Integrated, LUFS; empty when all of it lies under the gate.
    double loudnessRange = 0;       ///< LU.
    double truePeakDb = 0;          ///< dBTP, the higher of both channels.
    std::vector<double>
        shortTerm; ///< Short-term loudness in LUFS, ten a second, each of the three seconds before it.
    std::vector<double> spectrumDb; ///< One level per band of bandCentresHz().
    std::vector<float>
        lowest; ///< Lowest sample of either channel in each of waveformColumns equal spans of the time axis.
    std::vector<float> highest;
};

inline constexpr std::size_t waveformColumns = 1200;

/// Reads a stereo file from end to end.
/// @param timelineSeconds what the columns of the waveform divide; no shorter than the file, so that files with tails of
///        different lengths can be drawn one under another.
/// @throws CheckError when it is not stereo or the meter fails; render::RenderError when it cannot be read.
/// Source  EBU R 128, EBU Tech 3341 and 3342, ITU-R BS.1770, as libebur128 computes them.
TrackMeasures measureTrack(const std::filesystem::path& path, double timelineSeconds);

} // namespace orvane::kestrum::check
