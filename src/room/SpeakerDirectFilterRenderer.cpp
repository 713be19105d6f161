// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/SpeakerDirectFilterRenderer.h"

#include "parameters/SourcePosition.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace orvane::kestrum::core {

DirectFilterRenderer::DirectFilterRenderer(ISpeakerParameterSetView* view, IHrir* hrir, bool simple,
                                           const IBinauralComponentFactory& binauralFactory)
    : view(view), hrir(hrir), response(hrir, simple, binauralFactory) {}

void DirectFilterRenderer::process(SampleBuffer& buffer) {
    const Description now = present();
    response.compute(buffer, now.azimuth, now.elevation, now.clarity);
    buffer.multiplyBy(now.gain);
}

void DirectFilterRenderer::describe(ResponseKey& key) {
    described = present();
    key.append(described.generation);
    key.append(hrir->cell(described.azimuth, described.elevation));
    key.append(described.clarity);
    key.append(described.gain);
}

bool DirectFilterRenderer::draw(SampleBuffer& buffer) {
    const std::uint64_t generation =
        response.get(buffer, described.azimuth, described.elevation, described.clarity);
    const std::uint64_t drawnLength = std::min(buffer.numSamples, response.spread());
    // Behind the response all is +0, which most gains leave as it is.
    const float rest = 0.0f * described.gain;
    const bool restStays = std::bit_cast<std::uint32_t>(rest) == 0;
    for (std::uint64_t ear = 0; ear < buffer.numChannels; ++ear) {
        float* const samples = buffer.channelPointers[ear];
        for (std::uint64_t i = 0; i < drawnLength; ++i)
            samples[i] *= described.gain;
        if (!restStays)
            std::fill(samples + drawnLength, samples + buffer.numSamples, rest);
    }
    return generation == described.generation;
}

DirectFilterRenderer::Description DirectFilterRenderer::present() const {
    const SpatialPosition position = sourcePosition(*view);
    const float level = view->getFarFade() * view->getDistanceLevel();
    // The store counts azimuth to the other side.
    return {.generation = hrir->generation(),
            .azimuth = -static_cast<std::int32_t>(position.azimuth),
            .elevation = static_cast<std::int32_t>(position.elevation),
            .clarity = view->getClarity(),
            .gain = std::pow(10.0f, view->getDirectGainDb() / 20.0f) * level};
}

} // namespace orvane::kestrum::core
