// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/BinauralReverb.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace orvane {

namespace {

// Both as stored bits: their sum is not quite 1.
constexpr auto smoothCoefficient = std::bit_cast<float>(0x3F7D70A4u); // 0.99
constexpr auto smoothInput = std::bit_cast<float>(0x3C23D700u);       // 0.00999999

constexpr float fullLevelUpTo = 15.0f; // metres
constexpr float steeperFrom = 30.0f;
constexpr float silentFrom = 40.0f;

} // namespace

BinauralReverb::BinauralReverb(std::uint64_t blockSize, IReverbParameterView* view,
                               std::unique_ptr<IReverbFilter> filter, const IBinauralReverbBuilder& builder,
                               DistanceLaw distanceLaw, std::optional<float> expectedDecay)
    : blockSize(blockSize),
      view(view),
      inputFilters(builder.createInputFilters()),
      convolution(builder.createConvolution()),
      reverbFilter(std::move(filter)),
      distanceLaw(std::move(distanceLaw)),
      impulseResponse(2, (reverbFilter->partitionCount() + 1) * blockSize) {
    if (expectedDecay) {
        reverbFilter->update(impulseResponse, *expectedDecay);
        convolution->prepare(impulseResponse);
    }
}

void BinauralReverb::process(const SampleBuffer& input, SampleBuffer& output) {
    if (input.numChannels == 0 || input.numSamples < blockSize) {
        output.clear();
        return;
    }
    reverbFilter->update(impulseResponse, view->getReverbDecayPercent());
    const SampleSpan signal = input.channel(0);
    inputFilters->process(signal);
    convolution->process(signal, output, impulseResponse, reverbFilter->changed());
    output.multiplyBy(convolution->outputGain() * std::pow(10.0f, -view->getAttenuationDb() / 20.0f));
    applyGain(output);
}

void BinauralReverb::workAhead(std::uint64_t pendingSamples) { convolution->workAhead(pendingSamples); }

void BinauralReverb::applyGain(SampleBuffer& output) {
    const float target = std::pow(10.0f, view->getReverbGainDb() / 20.0f) *
                         distanceLaw(view->getDistance(), view->getDistanceScale());
    const float step = target * smoothInput;
    if (smoothedGain * smoothCoefficient + step == smoothedGain) { // settled: no step moves it any more
        output.multiplyBy(smoothedGain);
        return;
    }
    // Deliberate: the smoother takes a step for each sample of each channel, two in a stereo frame.
    for (std::uint64_t i = 0; i < output.numSamples; ++i) {
        for (std::uint64_t channel = 0; channel < output.numChannels; ++channel) {
            smoothedGain = smoothedGain * smoothCoefficient + step;
            output.channelPointers[channel][i] *= smoothedGain;
        }
    }
}

float reverbDistanceLaw(float distance, float distanceScale) noexcept {
    float p = distance * distanceScale;
    if (!(p > fullLevelUpTo))
        return 1.0f;
    p = std::min(p, silentFrom);
    const float near = p / fullLevelUpTo;
    float level = (1.0f / (near * near) - p / 20.0f + 1.75f) * 0.5f;
    if (p > steeperFrom)
        level *= 1.0f - (p - steeperFrom) / 10.0f;
    return std::max(0.0f, level);
}

} // namespace orvane
