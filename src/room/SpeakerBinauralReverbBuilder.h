// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IComponentFactory.h"
#include "binaural/IConvolutionFactory.h"
#include "parameters/core/IReverbParameterView.h"
#include "room/IBinauralReverbBuilder.h"

#include <cstdint>
#include <memory>

namespace orvane::kestrum::core {

/// Builds the parts of this product's reverb: low-pass and high-pass at the input, one long convolution.
class BinauralReverbBuilder final : public IBinauralReverbBuilder {
public:
    /// Units   sampleRate in hertz, blockSize in samples.
    /// @param parameterSet, componentFactory borrowed; the parameters for the life of what is built.
    BinauralReverbBuilder(double sampleRate, std::uint64_t blockSize, std::uint64_t partitionCount,
                          std::int32_t bandLimitFactor, IReverbParameterView* parameterSet,
                          const IComponentFactory* componentFactory,
                          std::unique_ptr<IConvolutionFactory> convolutionFactory);

    std::unique_ptr<IChannelProcessor> createInputFilters() const override;
    std::unique_ptr<IConvolution> createConvolution() const override;

private:
    float sampleRate;
    std::uint64_t blockSize;
    std::uint64_t partitionCount;
    std::int32_t bandLimitFactor;
    IReverbParameterView* parameterSet;
    const IComponentFactory* componentFactory;
    std::unique_ptr<IConvolutionFactory> convolutionFactory;
};

} // namespace orvane::kestrum::core
