// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/AlignedSet.h"
#include "data/head/ResponseSet.h"

#include <array>
#include <vector>

namespace orvane::kestrum::tools {

/// The set's responses at all places of the grid, in the order of the files, at the set's own rate.
std::vector<AlignedResponse> interpolateGrid(const AlignedSet& set);

/// How the responses are cut to the length of a file.
struct WindowShape {
    double leadSeconds = 150e-6;    ///< From sample 0 to the earliest onset of the whole set.
    double fadeInSeconds = 100e-6;  ///< Half a cosine from sample 0 on.
    double fadeOutSeconds = 250e-6; ///< Half a cosine up to the last sample.
};

/// When a response first reaches a tenth of its peak, in samples and parts of one.
double onsetOf(const Samples& response);

/// The time, on the scale of the arrivals, that becomes sample 0 of every response: the earliest onset of the
/// whole grid, less the lead. Only this common delay goes; what lies between the ears stays.
double commonOrigin(const AlignedSet& set, const std::vector<AlignedResponse>& grid,
                    const WindowShape& window);

/// Resamples responses to another rate with their levels kept: the resampled response filters as the old one
/// did.
///
/// Source  libsoxr at very high quality, linear phase, pass band to 0.9 of the lower Nyquist frequency.
class ResponseResampler {
public:
    ResponseResampler(double fromRate, double toRate);

    /// @param padded the response behind leadIn() samples of room for what rings before its start.
    /// @return `length` samples from the response's start on.
    Samples resample(const Samples& padded, std::size_t length) const;

    std::size_t leadIn() const { return 256; }

private:
    double from;
    double to;
};

/// Half a cosine at either end.
Samples windowOf(const WindowShape& shape, std::size_t length, double sampleRate);

/// What of one response's energy its file keeps, 0 to 1 per ear.
struct KeptEnergy {
    std::array<double, 2> ears{};
};

/// One file's worth of responses: put together, resampled, cut.
/// @param kept one entry per response.
ResponseSet renderSet(const ResponseFile& file, const AlignedSet& set,
                      const std::vector<AlignedResponse>& grid, double originSeconds,
                      const WindowShape& window, std::vector<KeptEnergy>& kept);

} // namespace orvane::kestrum::tools
