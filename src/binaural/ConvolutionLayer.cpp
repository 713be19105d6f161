// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/ConvolutionLayer.h"

#include "base/SampleBuffer.h"

#include <algorithm>
#include <utility>

namespace orvane {

namespace {

/// Bins of a tile: whole vectors, and few enough for a block's share of the work to be some tiles.
constexpr std::uint64_t tileBins = 32;

fft::AlignedArray<float> floats(std::uint64_t count) { return fft::makeAlignedArray<float>(count); }

} // namespace

ConvolutionLayer::ConvolutionLayer(const LayerShape& shape, std::uint64_t blockSize,
                                   const MultiplyAddKernel& kernel)
    : shape(shape),
      blockSize(blockSize),
      delay(shape.firstSample - 2 * shape.partitionLength),
      binCount(shape.transformLength / 2 + 1),
      inputSlots(shape.partitionCount() + 1),
      kernel(kernel),
      terms(shape.partitionCount()),
      window(floats(shape.transformLength)),
      inputSpectrum(fft::makeAlignedArray<fft::Complex>(binCount)),
      present{floats(shape.partitionLength), floats(shape.partitionLength)},
      next{floats(shape.partitionLength), floats(shape.partitionLength)},
      transform(shape.transformLength) {
    for (std::uint64_t bin = 0; bin < binCount; bin += tileBins)
        tiles.push_back({bin, std::min(tileBins, binCount - bin)});
    inputSpectra = fft::makeAlignedArray<fft::Complex>(tiles.size() * inputSlots * tileBins);
    responseSpectra =
        fft::makeAlignedArray<fft::Complex>(tiles.size() * 2 * shape.partitionCount() * tileBins);
    sums = {fft::makeAlignedArray<fft::Complex>(binCount), fft::makeAlignedArray<fft::Complex>(binCount)};
    partitions.reserve(shape.partitionCount());

    // One transform, the tiles, two transforms.
    const std::uint64_t ofTransform = transformCost(shape.transformLength);
    costs.push_back(ofTransform);
    for (const Tile& tile : tiles)
        costs.push_back(costs.back() + 2 * shape.partitionCount() * tile.binCount);
    costs.push_back(costs.back() + ofTransform);
    costs.push_back(costs.back() + ofTransform);
}

void ConvolutionLayer::replace(const SampleBuffer& impulseResponse, const InputHistory& history) noexcept {
    partitions.clear();
    for (std::uint64_t partition = shape.partitionCount(); partition-- > 0;)
        replacePartition(partition, impulseResponse);
    for (std::uint64_t tile = 0; tile < tiles.size(); ++tile)
        sumTile(tile, newestSlot > 0 ? newestSlot - 1 : inputSlots - 1);
    for (std::uint64_t ear = 0; ear < 2; ++ear)
        transformBack(ear, present[ear].get());
    for (std::uint64_t piece = 1; piece < piecesDone; ++piece)
        doPiece(piece, history);
}

void ConvolutionLayer::replacePartition(std::uint64_t partition,
                                        const SampleBuffer& impulseResponse) noexcept {
    const std::uint64_t offset = partition * shape.partitionLength;
    const std::uint64_t count = std::min(shape.partitionLength, shape.sampleCount - offset);
    bool silent = true;
    for (std::uint64_t ear = 0; ear < 2; ++ear) {
        const float* const samples = impulseResponse.channelPointers[ear] + shape.firstSample + offset;
        silent = silent && std::all_of(samples, samples + count, [](float sample) { return sample == 0.0f; });
        std::copy_n(samples, count, window.get());
        std::fill_n(window.get() + count, shape.transformLength - count, 0.0f);
        transform.forward(window.get(), sums[0].get());
        for (std::uint64_t tile = 0; tile < tiles.size(); ++tile)
            std::copy_n(sums[0].get() + tiles[tile].firstBin, tiles[tile].binCount,
                        responsesOf(tile) + (2 * partition + ear) * tileBins);
    }
    if (!silent)
        partitions.push_back(partition);
}

void ConvolutionLayer::work(std::uint64_t samples, const InputHistory& history) noexcept {
    const std::uint64_t due = costs.back() * (blockInPeriod * blockSize + samples) / shape.partitionLength;
    while (piecesDone < costs.size() && costs[piecesDone] <= due)
        doPiece(piecesDone++, history);
}

void ConvolutionLayer::advance(const InputHistory& history) noexcept {
    if (++blockInPeriod * blockSize < shape.partitionLength)
        return;
    blockInPeriod = 0;
    piecesDone = 0;
    windowEnd = history.end();
    newestSlot = newestSlot + 1 < inputSlots ? newestSlot + 1 : 0;
    std::swap(present, next);
}

void ConvolutionLayer::doPiece(std::uint64_t piece, const InputHistory& history) noexcept {
    if (piece == 0)
        transformInput(history);
    else if (piece <= tiles.size())
        takeAndSumTile(piece - 1);
    else
        transformBack(piece - tiles.size() - 1, next[piece - tiles.size() - 1].get());
}

void ConvolutionLayer::transformInput(const InputHistory& history) noexcept {
    const std::uint64_t used = 2 * shape.partitionLength;
    const std::uint64_t unused = shape.transformLength - used;
    std::fill_n(window.get(), unused, 0.0f);
    history.copyBefore(windowEnd, delay, window.get() + unused, used);
    transform.forward(window.get(), inputSpectrum.get());
}

void ConvolutionLayer::takeAndSumTile(std::uint64_t tile) noexcept {
    std::copy_n(inputSpectrum.get() + tiles[tile].firstBin, tiles[tile].binCount,
                inputsOf(tile) + newestSlot * tileBins);
    sumTile(tile, newestSlot);
}

void ConvolutionLayer::sumTile(std::uint64_t tile, std::uint64_t newest) noexcept {
    const fft::Complex* const inputs = inputsOf(tile);
    const fft::Complex* const responses = responsesOf(tile);
    for (std::uint64_t i = 0; i < partitions.size(); ++i) {
        const std::uint64_t partition = partitions[i];
        const std::uint64_t slot = newest >= partition ? newest - partition : newest + inputSlots - partition;
        const fft::Complex* const response = responses + 2 * partition * tileBins;
        terms[i] = {inputs + slot * tileBins, response, response + tileBins};
    }
    const auto [firstBin, count] = tiles[tile];
    for (const auto& sum : sums)
        std::fill_n(sum.get() + firstBin, count, fft::Complex{0, 0});
    kernel.addTerms(sums[0].get() + firstBin, sums[1].get() + firstBin, terms.data(), partitions.size(),
                    count);
}

void ConvolutionLayer::transformBack(std::uint64_t ear, float* target) noexcept {
    transform.backward(sums[ear].get(), window.get());
    const float* const valid = window.get() + shape.transformLength - shape.partitionLength;
    const float scale = 1.0f / static_cast<float>(shape.transformLength);
    for (std::uint64_t i = 0; i < shape.partitionLength; ++i)
        target[i] = scale * valid[i];
}

fft::Complex* ConvolutionLayer::inputsOf(std::uint64_t tile) const noexcept {
    return inputSpectra.get() + tile * inputSlots * tileBins;
}

fft::Complex* ConvolutionLayer::responsesOf(std::uint64_t tile) const noexcept {
    return responseSpectra.get() + tile * 2 * shape.partitionCount() * tileBins;
}

} // namespace orvane
