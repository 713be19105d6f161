// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "binaural/IConvolution.h"

#include <cstdint>
#include <memory>

namespace orvane {

/// Makes convolvers. Stateless: one instance serves every thread.
class IConvolutionFactory {
public:
    virtual ~IConvolutionFactory() = default;

    /// Units   sampleRate in hertz, blockSize in samples, 1 or more; partitionCount 1 or more.
    /// @param bandLimitFactor divisor of the band that is kept, 1 for all of it.
    /// @return sole owner of a convolver that is silent until it gets a response.
    /// @throws std::bad_alloc, the only failure; nothing half-built remains.
    virtual std::unique_ptr<IConvolution> create(double sampleRate, std::uint64_t blockSize,
                                                 std::uint64_t partitionCount,
                                                 std::int32_t bandLimitFactor) = 0;
};

} // namespace orvane
