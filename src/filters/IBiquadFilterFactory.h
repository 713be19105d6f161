// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "filters/IBiquadCrossfade.h"
#include "filters/IBiquadFilter.h"

#include <cstdint>
#include <memory>

namespace orvane {

/// Makes biquad filters. Stateless: one instance serves every thread.
///
/// Units   sampleRate and frequencies in hertz, gains in decibels.
/// Errors  std::bad_alloc only.
class IBiquadFilterFactory {
public:
    virtual ~IBiquadFilterFactory() = default;

    virtual std::unique_ptr<IBiquadFilter> createLowPass(float sampleRate, float frequencyHz, float q) = 0;
    virtual std::unique_ptr<IBiquadFilter> createHighPass(float sampleRate, float frequencyHz, float q) = 0;
    virtual std::unique_ptr<IBiquadFilter> createLowShelf(float sampleRate, float frequencyHz,
                                                          float gainDb) = 0;

    /// @param start 0 for a filter that is out at first, 1 for one that is in.
    virtual std::unique_ptr<IBiquadCrossfade> createCrossfadedLowShelf(float sampleRate, float frequencyHz,
                                                                       float gainDb, std::uint64_t blockSize,
                                                                       float milliseconds, float start) = 0;
};

} // namespace orvane
