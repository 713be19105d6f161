// SPDX-License-Identifier: GPL-3.0-or-later
#include "filters/BiquadFilter.h"

namespace orvane {

BiquadFilter::BiquadFilter(float rate, float frequencyHz) noexcept
    : sampleRate(rate), normalizedFrequency(clampNormalizedFrequency(frequencyHz / rate)) {}

void BiquadFilter::setFrequency(float frequencyHz) {
    const float wanted = frequencyHz / sampleRate;
    if (sameNormalizedFrequency(normalizedFrequency, wanted))
        return;
    normalizedFrequency = clampNormalizedFrequency(wanted);
    updateCoefficients();
}

// The loops run on copies of the section: a store to the output could be one to the section as far as the
// compiler knows, and the recursion would wait for memory in every sample.

void BiquadFilter::process(const float* in, float* out, std::uint64_t count, float gain) {
    BiquadSection run = section;
    for (std::uint64_t i = 0; i < count; ++i)
        out[i] = run.next(gain * in[i]);
    section = run;
}

void BiquadFilter::processInPlace(float* buffer, std::uint64_t count, float gain) {
    BiquadSection run = section;
    for (std::uint64_t i = 0; i < count; ++i)
        buffer[i] = run.next(buffer[i]) * gain;
    section = run;
}

void BiquadFilter::processInPlaceFading(float* buffer, std::uint64_t count, std::uint64_t offset,
                                        float gain) {
    BiquadSection run = section;
    for (std::uint64_t i = 0; i < count; ++i)
        buffer[i] =
            (1.0f - static_cast<float>(offset + i) / static_cast<float>(count)) * run.next(gain * buffer[i]);
    section = run;
}

void BiquadFilter::processAdd(const float* in, float* out, std::uint64_t count, float gain) {
    BiquadSection run = section;
    for (std::uint64_t i = 0; i < count; ++i)
        out[i] += run.next(gain * in[i]);
    section = run;
}

void BiquadFilter::processAddFading(const float* in, float* out, std::uint64_t count, std::uint64_t offset,
                                    float gain) {
    BiquadSection run = section;
    for (std::uint64_t i = 0; i < count; ++i)
        out[i] +=
            (1.0f - static_cast<float>(i + offset) / static_cast<float>(count)) * run.next(gain * in[i]);
    section = run;
}

void BiquadFilter::reset() { section.reset(); }

HighPassBiquadFilter::HighPassBiquadFilter(float rate, float frequencyHz, float quality) noexcept
    : BiquadFilter(rate, frequencyHz), q(quality) {
    section.coefficients = highPassCoefficients(normalizedFrequency, q);
}

void HighPassBiquadFilter::setQ(float quality) {
    q = quality;
    updateCoefficients();
}

void HighPassBiquadFilter::updateCoefficients() noexcept {
    section.coefficients = highPassCoefficients(normalizedFrequency, q);
}

LowPassBiquadFilter::LowPassBiquadFilter(float rate, float frequencyHz, float quality) noexcept
    : BiquadFilter(rate, frequencyHz), q(quality) {
    section.coefficients = lowPassCoefficients(normalizedFrequency, q);
}

void LowPassBiquadFilter::setQ(float quality) {
    q = quality;
    updateCoefficients();
}

void LowPassBiquadFilter::updateCoefficients() noexcept {
    section.coefficients = lowPassCoefficients(normalizedFrequency, q);
}

LowShelfBiquadFilter::LowShelfBiquadFilter(float rate, float frequencyHz, float decibels) noexcept
    : BiquadFilter(rate, frequencyHz), gain(decibels) {
    section.coefficients = lowShelfCoefficients(normalizedFrequency, gain);
}

void LowShelfBiquadFilter::setGain(float decibels) noexcept {
    gain = decibels;
    updateCoefficients();
}

void LowShelfBiquadFilter::updateCoefficients() noexcept {
    section.coefficients = lowShelfCoefficients(normalizedFrequency, gain);
}

} // namespace orvane
