// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/rooms/DiffuseHead.h"

#include "data/head/MeasuredSet.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace orvane::kestrum::tools {

namespace {

constexpr std::size_t fieldTransformSize = 2048; ///< Longer than a response correlated with itself.

Samples onBins(const Samples& curve, std::size_t binCount) {
    Samples result(binCount);
    const double step = static_cast<double>(curve.size() - 1) / static_cast<double>(binCount - 1);
    for (std::size_t bin = 0; bin < binCount; ++bin) {
        const double place = step * static_cast<double>(bin);
        const auto below = std::min(static_cast<std::size_t>(place), curve.size() - 2);
        result[bin] = std::lerp(curve[below], curve[below + 1], place - static_cast<double>(below));
    }
    return result;
}

} // namespace

DiffuseHead::DiffuseHead(ResponseSet responses) : set(std::move(responses)) {
    const std::vector<double> weights = gridWeights();
    bands = diffuseFieldCoherence(set.responses, weights, set.file.sampleRate);
    shareUpTo.resize(weights.size());
    std::partial_sum(weights.begin(), weights.end(), shareUpTo.begin());
    RealTransform transform(fieldTransformSize);
    const std::size_t binCount = transform.binCount();
    Samples cross(binCount);
    measured.power.fill(Samples(binCount));
    for (std::size_t index = 0; index < set.responses.size(); ++index) {
        const Spectrum left = transform.forward(set.responses[index][leftEar]);
        const Spectrum right = transform.forward(set.responses[index][rightEar]);
        for (std::size_t bin = 0; bin < binCount; ++bin) {
            measured.power[leftEar][bin] += weights[index] * std::norm(left[bin]);
            measured.power[rightEar][bin] += weights[index] * std::norm(right[bin]);
            cross[bin] += weights[index] * (left[bin] * std::conj(right[bin])).real();
        }
    }
    measured.coherence.resize(binCount);
    for (std::size_t bin = 0; bin < binCount; ++bin)
        measured.coherence[bin] =
            cross[bin] /
            std::sqrt(std::max(measured.power[leftEar][bin] * measured.power[rightEar][bin], 1e-300));
}

std::size_t DiffuseHead::place(double uniform) const {
    const auto found = std::ranges::upper_bound(shareUpTo, uniform * shareUpTo.back());
    return std::min(static_cast<std::size_t>(found - shareUpTo.begin()), set.responses.size() - 1);
}

HeadField DiffuseHead::field(std::size_t transformSize) const {
    const std::size_t binCount = transformSize / 2 + 1;
    return {{onBins(measured.power[leftEar], binCount), onBins(measured.power[rightEar], binCount)},
            onBins(measured.coherence, binCount)};
}

} // namespace orvane::kestrum::tools
