// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/ReverbConvolutionFactory.h"

#include "binaural/Convolution.h"

namespace orvane {

std::unique_ptr<IConvolution> ReverbConvolutionFactory::create(double sampleRate, std::uint64_t blockSize,
                                                               std::uint64_t partitionCount,
                                                               std::int32_t bandLimitFactor) {
    return std::make_unique<Convolution>(sampleRate, blockSize, partitionCount, bandLimitFactor);
}

} // namespace orvane
