// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/ConvolutionFactory.h"

#include "binaural/Convolution.h"
#include "binaural/FastConvolution.h"

namespace orvane {

std::unique_ptr<IConvolution> ConvolutionFactory::create(double sampleRate, std::uint64_t blockSize,
                                                         std::uint64_t partitionCount,
                                                         std::int32_t bandLimitFactor) {
    if (options.path == RenderPath::plain)
        return std::make_unique<Convolution>(sampleRate, blockSize, partitionCount, bandLimitFactor);
    return std::make_unique<FastConvolution>(sampleRate, blockSize, partitionCount, bandLimitFactor,
                                             options.instructionSet);
}

} // namespace orvane
