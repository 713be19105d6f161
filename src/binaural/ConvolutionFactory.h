// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "binaural/IConvolutionFactory.h"

namespace orvane {

/// Stateless: one instance serves every thread.
class ConvolutionFactory final : public IConvolutionFactory {
public:
    std::unique_ptr<IConvolution> create(double sampleRate, std::uint64_t blockSize,
                                         std::uint64_t partitionCount, std::int32_t bandLimitFactor) override;
};

} // namespace orvane
