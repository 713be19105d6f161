// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "binaural/IConvolutionFactory.h"
#include "binaural/RenderOptions.h"

namespace orvane {

/// For loudspeakers: responses that often change in part. One instance serves every thread.
class ConvolutionFactory final : public IConvolutionFactory {
public:
    explicit ConvolutionFactory(const RenderOptions& options = {}) noexcept : options(options) {}

    std::unique_ptr<IConvolution> create(double sampleRate, std::uint64_t blockSize,
                                         std::uint64_t partitionCount, std::int32_t bandLimitFactor) override;

private:
    RenderOptions options;
};

} // namespace orvane
