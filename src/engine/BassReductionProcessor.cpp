// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/BassReductionProcessor.h"

namespace orvane::kestrum::core {

namespace {

constexpr float shelfFrequencyHz = 340.0f;
constexpr float shelfGainDb = -2.7f;

} // namespace

BassReductionProcessor::BassReductionProcessor(double sampleRate, IBiquadFilterFactory* filterFactory) {
    for (std::unique_ptr<IBiquadFilter>& filter : filters)
        filter = filterFactory->createLowShelf(static_cast<float>(sampleRate), shelfFrequencyHz, shelfGainDb);
}

void BassReductionProcessor::process(SampleBuffer& buffer) {
    for (std::size_t channel = 0; channel < filters.size(); ++channel)
        filters[channel]->processInPlace(buffer.channelPointers[channel], buffer.numSamples, 1.0f);
}

} // namespace orvane::kestrum::core
