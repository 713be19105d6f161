// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/IOutputFormat.h"

namespace orvane {

/// The record of one output format.
class OutputFormat final : public IOutputFormat {
public:
    /// @throws std::invalid_argument "output format not supported" when the table has no such number.
    static OutputFormat of(Format format);

    /// The format `trunc(fraction * 100)`: the inverse of fraction().
    ///
    /// @throws std::invalid_argument as of().
    static OutputFormat fromFraction(float fraction);

    bool flag2() const noexcept override { return second; }
    bool flag3() const noexcept override { return third; }
    bool hasLowFrequencyChannel() const noexcept override;
    bool flag1() const noexcept override { return first; }
    bool isPlainTwoChannel() const noexcept override { return number == Format::plainTwoChannel; }
    bool isBinaural() const noexcept override { return number == Format::binaural; }
    std::uint64_t channelCount() const noexcept override { return channels; }
    Format format() const noexcept override { return number; }
    float fraction() const noexcept override;

private:
    OutputFormat(std::uint64_t channels, Format number) noexcept : channels(channels), number(number) {}

    std::uint64_t channels;
    bool first = false; ///< The three flags are clear in every format that is in the table.
    bool second = false;
    bool third = false;
    Format number;
};

} // namespace orvane
