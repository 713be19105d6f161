// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "binaural/IConvolutionFactory.h"
#include "binaural/RenderOptions.h"

namespace orvane {

/// For the late reverb: one long response that seldom changes. One instance serves every thread.
class ReverbConvolutionFactory final : public IConvolutionFactory {
public:
    explicit ReverbConvolutionFactory(const RenderOptions& options = {}) noexcept : options(options) {}

    std::unique_ptr<IConvolution> create(double sampleRate, std::uint64_t blockSize,
                                         std::uint64_t partitionCount, std::int32_t bandLimitFactor) override;

private:
    RenderOptions options;
};

} // namespace orvane
