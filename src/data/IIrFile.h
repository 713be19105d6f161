// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

namespace orvane {

/// Describes one data file for one running rate, without opening it.
///
/// Thread  any; immutable.
class IIrFile {
public:
    virtual ~IIrFile() = default;

    virtual std::string label() const = 0;
    virtual std::string path() const = 0;

    /// True when the running rate is a multiple of the stored one.
    virtual bool isUpsampled() const noexcept = 0;

    /// Rate of the stored material, in hertz.
    virtual std::int32_t nativeSampleRate() const noexcept = 0;

    /// Samples per ear of one head-related response at the running rate.
    virtual std::uint64_t length() const noexcept = 0;

    /// Head-related responses in the file.
    virtual std::uint64_t responseCount() const noexcept = 0;

    /// The running rate in hertz, as it was asked for.
    virtual double sampleRate() const noexcept = 0;
};

} // namespace orvane
