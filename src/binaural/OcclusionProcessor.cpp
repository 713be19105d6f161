// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/OcclusionProcessor.h"

#include <cmath>

namespace orvane {

OcclusionProcessor::OcclusionProcessor(float sampleRate, const float* amount, std::uint64_t channelCount,
                                       IBiquadFilterFactory* filterFactory)
    : amount(amount) {
    for (std::uint64_t channel = 0; channel < channelCount; ++channel)
        filters.push_back(filterFactory->createLowPass(sampleRate, 20000.0f, 0.707f));
}

void OcclusionProcessor::process(SampleBuffer& buffer) {
    if (*amount == 0.0f)
        return;
    for (std::uint64_t channel = 0; channel < filters.size(); ++channel) {
        const float frequency = std::pow(100.0f, 1.0f - *amount) * 20000.0f / 100.0f;
        filters[channel]->setFrequency(frequency);
        filters[channel]->processInPlace(buffer.channelPointers[channel], buffer.numSamples, 1.0f);
    }
}

} // namespace orvane
