// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/ReverbConvolutionFactory.h"

#include "binaural/BandLimit.h"
#include "binaural/Convolution.h"
#include "binaural/LayerPlan.h"
#include "binaural/LayeredConvolution.h"
#include "binaural/ReverbConvolution.h"

namespace orvane {

namespace {

/// Up to here the bits are those of the plain path, and larger partitions would save little.
constexpr std::uint64_t longestUniform = 64;

} // namespace

std::unique_ptr<IConvolution> ReverbConvolutionFactory::create(double sampleRate, std::uint64_t blockSize,
                                                               std::uint64_t partitionCount,
                                                               std::int32_t bandLimitFactor) {
    if (options.path == RenderPath::plain)
        return std::make_unique<Convolution>(sampleRate, blockSize, partitionCount, bandLimitFactor);
    const BandLimit bandLimit = BandLimit::of(blockSize, partitionCount, bandLimitFactor);
    if (partitionCount > longestUniform) {
        const LayerPlan plan = planLayers(blockSize, partitionCount, bandLimit);
        if (!plan.layers.empty())
            return std::make_unique<LayeredConvolution>(sampleRate, blockSize, plan, bandLimit,
                                                        options.instructionSet);
    }
    return std::make_unique<ReverbConvolution>(sampleRate, blockSize, partitionCount, bandLimit,
                                               options.instructionSet);
}

} // namespace orvane
