// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/LayeredConvolution.h"

#include "base/SampleBuffer.h"

#include <algorithm>

namespace orvane {

namespace {

using Layers = std::vector<std::unique_ptr<ConvolutionLayer>>;

Layers makeLayers(const LayerPlan& plan, std::uint64_t blockSize, const MultiplyAddKernel& kernel) {
    Layers layers;
    for (const LayerShape& shape : plan.layers)
        layers.push_back(std::make_unique<ConvolutionLayer>(shape, blockSize, kernel));
    return layers;
}

std::uint64_t historyLength(const Layers& layers) {
    std::uint64_t longest = 1;
    for (const auto& layer : layers)
        longest = std::max(longest, layer->historyLength());
    return longest;
}

} // namespace

LayeredConvolution::LayeredConvolution(double sampleRate, std::uint64_t blockSize, const LayerPlan& plan,
                                       const BandLimit& bandLimit, InstructionSet instructionSet)
    : blockSize(blockSize),
      head(sampleRate, blockSize, plan.headPartitions, bandLimit, instructionSet),
      layers(makeLayers(plan, blockSize, multiplyAddKernel(instructionSet))),
      history(historyLength(layers)) {}

void LayeredConvolution::process(SampleSpan input, SampleBuffer& output, const SampleBuffer& impulseResponse,
                                 bool updateResponse) {
    head.process(input, output, impulseResponse, updateResponse);
    if (updateResponse)
        replaceLayers(impulseResponse);
    addLayers(output);
    finishBlock(input);
}

void LayeredConvolution::processCrossfaded(SampleSpan input, SampleBuffer& oldOutput, SampleBuffer& newOutput,
                                           const SampleBuffer& impulseResponse, bool updateResponse) {
    head.processCrossfaded(input, oldOutput, newOutput, impulseResponse, updateResponse);
    addLayers(oldOutput);
    if (updateResponse)
        replaceLayers(impulseResponse);
    addLayers(newOutput);
    finishBlock(input);
}

void LayeredConvolution::prepare(const SampleBuffer& impulseResponse) {
    head.prepare(impulseResponse);
    replaceLayers(impulseResponse);
}

void LayeredConvolution::workAhead(std::uint64_t pendingSamples) {
    head.workAhead(pendingSamples);
    for (const auto& layer : layers)
        layer->work(pendingSamples, history);
}

void LayeredConvolution::replaceLayers(const SampleBuffer& impulseResponse) noexcept {
    for (const auto& layer : layers)
        layer->replace(impulseResponse, history);
}

void LayeredConvolution::addLayers(SampleBuffer& output) const noexcept {
    const std::uint64_t frames = std::min(blockSize, output.numSamples);
    for (const auto& layer : layers)
        for (std::uint64_t ear = 0; ear < 2; ++ear)
            for (std::uint64_t i = 0; i < frames; ++i)
                output.channelPointers[ear][i] += layer->output(ear)[i];
}

void LayeredConvolution::finishBlock(SampleSpan input) noexcept {
    for (const auto& layer : layers)
        layer->work(blockSize, history);
    history.push({input.data, blockSize});
    for (const auto& layer : layers)
        layer->advance(history);
}

} // namespace orvane
