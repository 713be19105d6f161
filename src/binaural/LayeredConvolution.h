// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "binaural/ConvolutionLayer.h"
#include "binaural/IConvolution.h"
#include "binaural/InputHistory.h"
#include "binaural/LayerPlan.h"
#include "binaural/ReverbConvolution.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace orvane {

/// The same as Convolution for a long response, within -120 dB of the output's peak: its start in partitions of
/// the block, so that nothing is late, its rest in larger ones, which cost less.
///
///     input -+-> head: partitions of the block ---------------(+)--> output
///            +-> history -> layer of larger partitions --------+
///                        -> layer of still larger ones --------+
///
/// The layers' work of later blocks is spread evenly over the present ones. A replaced response acts at once on
/// all of the past input; that block does what the old response had done ahead.
///
/// What the band limit acts on stays in the head: bins that are cleared make a response that depends on the
/// place within the block, which larger partitions cannot follow.
///
/// Input that is not finite is heard for as many blocks as the head is long, one more at the most.
///
/// Thread  as IConvolution.
class LayeredConvolution final : public IConvolution {
public:
    LayeredConvolution(double sampleRate, std::uint64_t blockSize, const LayerPlan& plan,
                       const BandLimit& bandLimit, InstructionSet instructionSet);

    void process(SampleSpan input, SampleBuffer& output, const SampleBuffer& impulseResponse,
                 bool updateResponse) ORVANE_REALTIME override;
    void processCrossfaded(SampleSpan input, SampleBuffer& oldOutput, SampleBuffer& newOutput,
                           const SampleBuffer& impulseResponse, bool updateResponse) ORVANE_REALTIME override;
    void prepare(const SampleBuffer& impulseResponse) override;
    void workAhead(std::uint64_t pendingSamples) ORVANE_REALTIME override;
    float outputGain() const noexcept ORVANE_REALTIME override { return head.outputGain(); }

private:
    void replaceLayers(const SampleBuffer& impulseResponse) noexcept ORVANE_REALTIME;
    void addLayers(SampleBuffer& output) const noexcept ORVANE_REALTIME;
    void finishBlock(SampleSpan input) noexcept ORVANE_REALTIME;

    std::uint64_t blockSize;
    ReverbConvolution head;
    std::vector<std::unique_ptr<ConvolutionLayer>> layers;
    InputHistory history;
};

} // namespace orvane
