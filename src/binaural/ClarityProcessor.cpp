// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/ClarityProcessor.h"

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

constexpr float outputLevel = 0.875f;

} // namespace

ClarityProcessor::ClarityProcessor(std::uint64_t length, const float* amount,
                                   IRmsSpectrumFactory* rmsSpectrumFactory)
    : amount(amount),
      length(length),
      weightLimit(std::pow(10.0f, 1.25f)),
      magnitudes(length),
      rmsSpectrum(rmsSpectrumFactory->create(length)),
      timeInput(2, 2 * length),
      timeOutput(2, 2 * length),
      spectra(2, length),
      weights(length + 1),
      transform(2 * length) {}

void ClarityProcessor::process(SampleBuffer& buffer) {
    for (std::uint64_t channel = 0; channel < buffer.numChannels; ++channel) {
        const std::uint64_t count = std::min(length, buffer.numSamples);
        std::copy_n(buffer.channelPointers[channel], count, timeInput.channelPointers[channel]);
        transform.forward(timeInput.channelPointers[channel], spectra.slot(channel).data);
    }
    rmsSpectrum->compute(spectra, magnitudes.data());
    for (std::uint64_t k = 0; k < length; ++k) {
        const float weight = std::pow(magnitudes[k], -*amount);
        weights[k] = std::isinf(weight) || weight > weightLimit ? weightLimit : weight;
    }
    const float factor = outputLevel / static_cast<float>(2 * length);
    for (std::uint64_t channel = 0; channel < buffer.numChannels; ++channel) {
        fft::Complex* const spectrum = spectra.slot(channel).data;
        for (std::uint64_t k = 0; k <= length; ++k) {
            spectrum[k].re *= weights[k];
            spectrum[k].im *= weights[k];
        }
        transform.backward(spectrum, timeOutput.channelPointers[channel]);
        buffer.writeChannelScaled(channel, timeOutput.channel(channel), factor);
    }
}

} // namespace orvane
