// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "room/IReverbFilter.h"
#include "room/IReverbImpulseResponse.h"

#include <cstdint>
#include <memory>
#include <string>

namespace orvane {

/// Makes reverb filters. Stateless: one instance serves every thread.
class IReverbFilterFactory {
public:
    virtual ~IReverbFilterFactory() = default;

    /// Units   sampleRate in hertz, blockSize in samples.
    /// Thread  building thread; reads the room's response from its file.
    /// Errors  sampleRateNotSupportedException, wavNotReadableException.
    virtual std::unique_ptr<IReverbFilter> create(double sampleRate, std::uint64_t blockSize,
                                                  std::unique_ptr<IReverbImpulseResponse> impulseResponse,
                                                  const std::string& dataDirectory,
                                                  std::uint32_t roomId) const = 0;
};

} // namespace orvane
