// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/measures/Rendering.h"

#include "data/DataError.h"

#include <soxr.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>
#include <string>

namespace orvane::kestrum::tools {

namespace {

double energyOf(const Samples& samples) {
    return std::inner_product(samples.begin(), samples.end(), samples.begin(), 0.0);
}

} // namespace

std::vector<AlignedResponse> interpolateGrid(const AlignedSet& set) {
    const std::vector<Direction> sites = set.directions();
    std::vector<AlignedResponse> grid;
    grid.reserve(responseCount);
    for (const GridPlace& place : gridPlaces()) {
        const Direction direction = place.direction();
        grid.push_back(mixResponses(set, naturalWeights(sites, direction), direction));
    }
    return grid;
}

double onsetOf(const Samples& response) {
    constexpr double threshold = 0.1;
    double peak = 0;
    for (const double sample : response)
        peak = std::max(peak, std::abs(sample));
    for (std::size_t index = 0; index < response.size(); ++index) {
        const double now = std::abs(response[index]);
        if (now >= threshold * peak && peak > 0) {
            const double before = index > 0 ? std::abs(response[index - 1]) : 0.0;
            return static_cast<double>(index) - (now - threshold * peak) / (now - before);
        }
    }
    return 0;
}

double commonOrigin(const AlignedSet& set, const std::vector<AlignedResponse>& grid,
                    const WindowShape& window) {
    RealTransform transform(set.transformSize);
    // Far enough ahead of every arrival that nothing comes before sample 0.
    double ahead = std::numeric_limits<double>::infinity();
    for (const AlignedResponse& response : grid)
        ahead = std::min({ahead, response.arrivalSeconds[leftEar], response.arrivalSeconds[rightEar]});
    const std::size_t room = set.transformSize / 8;
    ahead -= static_cast<double>(room) / set.sampleRate;
    double earliest = std::numeric_limits<double>::infinity();
    for (const AlignedResponse& response : grid)
        for (std::size_t ear = 0; ear < 2; ++ear)
            earliest = std::min(earliest,
                                onsetOf(assembleResponse(response, ear, set.sampleRate, ahead, transform)));
    return ahead + earliest / set.sampleRate - window.leadSeconds;
}

ResponseResampler::ResponseResampler(double fromRate, double toRate) : from(fromRate), to(toRate) {}

Samples ResponseResampler::resample(const Samples& padded, std::size_t length) const {
    const double ratio = to / from;
    Samples result(length);
    if (from == to) {
        std::copy_n(padded.begin() + static_cast<std::ptrdiff_t>(leadIn()), length, result.begin());
        return result;
    }
    // The lead in has to be a whole number of samples at both rates, or the response would move between them:
    // what remains is made up by the caller's own broken delay. See renderSet().
    const auto skipped = static_cast<std::size_t>(std::lround(static_cast<double>(leadIn()) * ratio));
    Samples whole(static_cast<std::size_t>(std::ceil(static_cast<double>(padded.size()) * ratio)) + 1);
    const soxr_io_spec_t format = soxr_io_spec(SOXR_FLOAT64_I, SOXR_FLOAT64_I);
    soxr_quality_spec_t quality = soxr_quality_spec(SOXR_VHQ, SOXR_LINEAR_PHASE);
    // A gentler edge than usual rings less; responses are short, and nothing of them lies above the edge that
    // matters.
    quality.passband_end = 0.9;
    quality.stopband_begin = 1.0;
    std::size_t used = 0;
    std::size_t made = 0;
    const soxr_error_t error = soxr_oneshot(from, to, 1, padded.data(), padded.size(), &used, whole.data(),
                                            whole.size(), &made, &format, &quality, nullptr);
    if (error != nullptr)
        throw DataError(std::string("The responses cannot be resampled (") + error +
                        "): give a set at another rate.");
    for (std::size_t index = 0; index < length && skipped + index < made; ++index)
        result[index] = whole[skipped + index] / ratio;
    return result;
}

Samples windowOf(const WindowShape& shape, std::size_t length, double sampleRate) {
    Samples window(length, 1.0);
    const double fadeIn = shape.fadeInSeconds * sampleRate;
    const double fadeOut = shape.fadeOutSeconds * sampleRate;
    const auto rise = [](double way) {
        return way >= 1 ? 1.0 : 0.5 - 0.5 * std::cos(std::numbers::pi * way);
    };
    for (std::size_t index = 0; index < length; ++index) {
        const double fromStart = static_cast<double>(index) + 0.5;
        const double fromEnd = static_cast<double>(length - index) - 0.5;
        window[index] =
            (fadeIn > 0 ? rise(fromStart / fadeIn) : 1) * (fadeOut > 0 ? rise(fromEnd / fadeOut) : 1);
    }
    return window;
}

ResponseSet renderSet(const ResponseFile& file, const AlignedSet& set,
                      const std::vector<AlignedResponse>& grid, double originSeconds,
                      const WindowShape& window, std::vector<KeptEnergy>& kept) {
    const double rate = file.sampleRate;
    const ResponseResampler resampler(set.sampleRate, rate);
    RealTransform transform(set.transformSize);
    const Samples shape = windowOf(window, file.length, rate);
    const double ratio = rate / set.sampleRate;
    const auto leadIn = static_cast<double>(resampler.leadIn());
    const double wholeLeadIn = static_cast<double>(std::lround(leadIn * ratio)) / ratio;
    const auto wholeLength = static_cast<std::size_t>(static_cast<double>(set.transformSize) * ratio) / 2;
    ResponseSet result{file, {}};
    result.responses.resize(grid.size());
    kept.resize(grid.size());
    for (std::size_t index = 0; index < grid.size(); ++index)
        for (std::size_t ear = 0; ear < 2; ++ear) {
            const Samples padded = assembleResponse(grid[index], ear, set.sampleRate,
                                                    originSeconds - wholeLeadIn / set.sampleRate, transform);
            Samples samples = resampler.resample(padded, wholeLength);
            const double before = energyOf(samples);
            samples.resize(file.length);
            for (std::size_t frame = 0; frame < file.length; ++frame)
                samples[frame] *= shape[frame];
            kept[index].ears[ear] = before > 0 ? energyOf(samples) / before : 1.0;
            result.responses[index][ear] = std::move(samples);
        }
    return result;
}

} // namespace orvane::kestrum::tools
