// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "filters/BiquadSection.h"
#include "filters/IBiquadFilter.h"

namespace orvane {

/// What the filters with immediate coefficients share: the sample loops and the frequency's limits.
class BiquadFilter : public IBiquadFilter {
public:
    void setFrequency(float frequencyHz) ORVANE_REALTIME override;
    void process(const float* in, float* out, std::uint64_t count, float gain) ORVANE_REALTIME override;
    void processInPlace(float* buffer, std::uint64_t count, float gain) ORVANE_REALTIME override;
    void processInPlaceFading(float* buffer, std::uint64_t count, std::uint64_t offset,
                              float gain) ORVANE_REALTIME override;
    void processAdd(const float* in, float* out, std::uint64_t count, float gain) ORVANE_REALTIME override;
    void processAddFading(const float* in, float* out, std::uint64_t count, std::uint64_t offset,
                          float gain) ORVANE_REALTIME override;
    void reset() ORVANE_REALTIME override;

protected:
    /// Units   hertz. The derived constructor computes the coefficients.
    BiquadFilter(float sampleRate, float frequencyHz) noexcept;

    /// Recomputes `section.coefficients` from the frequency and the type's own parameter.
    virtual void updateCoefficients() noexcept ORVANE_REALTIME = 0;

    float sampleRate;
    float normalizedFrequency; ///< Fraction of the sampling rate, within its limits.
    BiquadSection section;
};

/// Second-order high pass.
class HighPassBiquadFilter final : public BiquadFilter {
public:
    HighPassBiquadFilter(float sampleRate, float frequencyHz, float quality) noexcept;
    void setQ(float quality) ORVANE_REALTIME override;

private:
    void updateCoefficients() noexcept ORVANE_REALTIME override;

    float q;
};

/// Second-order low pass.
class LowPassBiquadFilter final : public BiquadFilter {
public:
    LowPassBiquadFilter(float sampleRate, float frequencyHz, float quality) noexcept;
    void setQ(float quality) ORVANE_REALTIME override;

private:
    void updateCoefficients() noexcept ORVANE_REALTIME override;

    float q;
};

/// Second-order low shelf: `gain` well below the frequency, 0 dB well above.
class LowShelfBiquadFilter final : public BiquadFilter {
public:
    LowShelfBiquadFilter(float sampleRate, float frequencyHz, float decibels) noexcept;
    void setGain(float decibels) noexcept ORVANE_REALTIME;

    /// A shelf has no quality: the same as setGain().
    void setQ(float decibels) ORVANE_REALTIME override { setGain(decibels); }

private:
    void updateCoefficients() noexcept ORVANE_REALTIME override;

    float gain; ///< Decibels.
};

} // namespace orvane
