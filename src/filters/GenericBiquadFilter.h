// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "filters/BiquadSection.h"
#include "filters/IGenericBiquadFilter.h"

#include <algorithm>
#include <cstdint>

namespace orvane {

/// Response of a generic filter: low pass.
struct LowpassBiquad {
    static BiquadCoefficients coefficients(float normalizedFrequency, float q) noexcept ORVANE_REALTIME {
        return lowPassCoefficients(normalizedFrequency, q);
    }
};

/// Response of a generic filter: high pass.
struct HighpassBiquad {
    static BiquadCoefficients coefficients(float normalizedFrequency, float q) noexcept ORVANE_REALTIME {
        return highPassCoefficients(normalizedFrequency, q);
    }
};

/// @tparam Value how a parameter takes effect: zmtl::HardValue<float>, in one step at a block's start.
/// @tparam Response LowpassBiquad or HighpassBiquad.
template <typename Value, typename Response>
class GenericBiquadFilter : public IGenericBiquadFilter {
public:
    /// Units   hertz.
    explicit GenericBiquadFilter(float rate) noexcept : sampleRate(rate) {
        normalizedFrequency.set(1000.0f / rate);
    }

    void process(SampleSpan buffer) ORVANE_REALTIME override { process(buffer, buffer); }

    void setFrequency(float frequencyHz) ORVANE_REALTIME override {
        const float wanted = clampNormalizedFrequency(frequencyHz / sampleRate);
        if (sameNormalizedFrequency(normalizedFrequency.get(), wanted))
            return;
        normalizedFrequency.set(wanted);
        dirty = true;
    }

    void setQ(float quality) ORVANE_REALTIME override {
        q.set(std::max(0.0001f, quality));
        dirty = true;
    }

    void setGain(float value) ORVANE_REALTIME override {
        gain = value;
        dirty = true;
    }

    void setInputGain(float value) ORVANE_REALTIME override { inputGain = value; }

    void process(SampleSpan in, SampleSpan out) ORVANE_REALTIME override {
        if (dirty) {
            section.coefficients = Response::coefficients(normalizedFrequency.get(), q.get());
            dirty = false;
        }
        const std::uint64_t count = std::min(in.length, out.length);
        BiquadSection run = section; // so that the compiler knows that no store to the output changes it
        const float scale = inputGain;
        for (std::uint64_t i = 0; i < count; ++i)
            out[i] = run.next(in[i] * scale);
        section = run;
    }

    void reset() ORVANE_REALTIME override { section.reset(); }

    /// Whether the next block works the coefficients out anew.
    bool isDirty() const noexcept { return dirty; }

private:
    float sampleRate;
    BiquadSection section;
    Value normalizedFrequency; ///< Fraction of the sampling rate.
    Value q{0.77f};
    float gain = 0.0f; ///< Stored, unused by the pass responses.
    float inputGain = 1.0f;
    bool dirty = true;
};

} // namespace orvane
