// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

namespace orvane {

/// Describes the data file of one running rate; opens nothing.
class IIrFile {
public:
    virtual ~IIrFile() = default;

    virtual std::string label() const = 0;
    virtual std::string path() const = 0;

    /// True when the running rate is a multiple of the stored one.
    virtual bool isUpsampled() const noexcept = 0;
    virtual std::int32_t nativeSampleRate() const noexcept = 0; ///< Hertz, as stored.
    virtual std::uint64_t length() const noexcept = 0; ///< Samples per ear of one response, running rate.
    virtual std::uint64_t responseCount() const noexcept = 0;
    virtual double sampleRate() const noexcept = 0; ///< Hertz, running.
};

} // namespace orvane
