// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"
#include "base/SampleBuffer.h"

#include <cstdint>
#include <string>

namespace orvane {

/// The stored late reverb of one room at the running rate.
class IReverbImpulseResponse {
public:
    virtual ~IReverbImpulseResponse() = default;

    /// Units   rates in hertz: the running one and the file's own.
    /// Thread  building thread; reads the file.
    /// Errors  wavNotReadableException.
    virtual void load(double sampleRate, std::int32_t fileRate, std::uint32_t roomId,
                      const std::string& path) = 0;

    virtual std::uint64_t frames() const noexcept ORVANE_REALTIME = 0;

    /// Writes the response, scaled by the room's gain.
    ///
    /// Shape   buffer [2][at least frames()]; what lies behind stays.
    virtual void copyTo(SampleBuffer& buffer) const ORVANE_REALTIME = 0;
};

} // namespace orvane
