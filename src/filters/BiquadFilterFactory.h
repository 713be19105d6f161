// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "filters/IBiquadFilterFactory.h"

namespace orvane {

/// Stateless: one instance serves every thread.
class BiquadFilterFactory final : public IBiquadFilterFactory {
public:
    std::unique_ptr<IBiquadFilter> createLowPass(float sampleRate, float frequencyHz, float q) override;
    std::unique_ptr<IBiquadFilter> createHighPass(float sampleRate, float frequencyHz, float q) override;
    std::unique_ptr<IBiquadFilter> createLowShelf(float sampleRate, float frequencyHz, float gainDb) override;
    std::unique_ptr<IBiquadCrossfade> createCrossfadedLowShelf(float sampleRate, float frequencyHz,
                                                               float gainDb, std::uint64_t blockSize,
                                                               float milliseconds, float start) override;
};

} // namespace orvane
