// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace orvane {

/// What kind of signal leaves the renderer. Immutable.
class IOutputFormat {
public:
    /// A format by number; those without a name here are speaker and Ambisonic-like buses of 4 to 24
    /// channels.
    enum class Format : std::int32_t {
        binaural = 2,        ///< Two ears through measured responses: the only one this product uses.
        plainTwoChannel = 11 ///< Two channels with time and level differences only.
    };

    virtual ~IOutputFormat() = default;

    virtual bool flag2() const noexcept = 0;
    virtual bool flag3() const noexcept = 0;
    virtual bool hasLowFrequencyChannel() const noexcept = 0;
    virtual bool flag1() const noexcept = 0;
    virtual bool isPlainTwoChannel() const noexcept = 0;
    virtual bool isBinaural() const noexcept = 0;
    virtual std::uint64_t channelCount() const noexcept = 0;
    virtual Format format() const noexcept = 0;

    /// The format as a fraction that OutputFormat::fromFraction() reads back: (format + 0.4) / 100.
    virtual float fraction() const noexcept = 0;
};

} // namespace orvane
