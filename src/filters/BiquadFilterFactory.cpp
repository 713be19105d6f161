// SPDX-License-Identifier: GPL-3.0-or-later
#include "filters/BiquadFilterFactory.h"

#include "filters/BiquadCrossfade.h"
#include "filters/BiquadFilter.h"

namespace orvane {

std::unique_ptr<IBiquadFilter> BiquadFilterFactory::createLowPass(float sampleRate, float frequencyHz,
                                                                  float q) {
    return std::make_unique<LowPassBiquadFilter>(sampleRate, frequencyHz, q);
}

std::unique_ptr<IBiquadFilter> BiquadFilterFactory::createHighPass(float sampleRate, float frequencyHz,
                                                                   float q) {
    return std::make_unique<HighPassBiquadFilter>(sampleRate, frequencyHz, q);
}

std::unique_ptr<IBiquadFilter> BiquadFilterFactory::createLowShelf(float sampleRate, float frequencyHz,
                                                                   float gainDb) {
    return std::make_unique<LowShelfBiquadFilter>(sampleRate, frequencyHz, gainDb);
}

std::unique_ptr<IBiquadCrossfade>
BiquadFilterFactory::createCrossfadedLowShelf(float sampleRate, float frequencyHz, float gainDb,
                                              std::uint64_t blockSize, float milliseconds, float start) {
    return std::make_unique<BiquadCrossfade>(createLowShelf(sampleRate, frequencyHz, gainDb), blockSize,
                                             sampleRate, milliseconds, start);
}

} // namespace orvane
