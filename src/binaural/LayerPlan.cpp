// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/LayerPlan.h"

#include <algorithm>
#include <bit>

namespace orvane {

namespace {

constexpr std::uint64_t longestTransform = 65536;
constexpr std::uint64_t largestRatio = 512; // of a layer's partitions to the block

/// Smallest length from `least` on that the transforms are fast at: a power of two times 1, 3, 5, 9 or 15.
std::uint64_t fastLength(std::uint64_t least) noexcept {
    std::uint64_t best = std::bit_ceil(least);
    for (const std::uint64_t odd : {3u, 5u, 9u, 15u})
        best = std::min(best, 2 * odd * std::bit_ceil((least + 2 * odd - 1) / (2 * odd)));
    return best;
}

/// In complex products with their sums, as transformCost().
double headCost(std::uint64_t blockSize, std::uint64_t partitions) noexcept {
    return 2.0 * static_cast<double>(partitions) * static_cast<double>(blockSize + 1);
}

/// Mean and worst block together: of a layer's work one transform is the largest piece that does not divide.
double layerCost(const LayerShape& layer, std::uint64_t blockSize) noexcept {
    const auto transform = static_cast<double>(transformCost(layer.transformLength));
    const double products =
        static_cast<double>(layer.partitionCount()) * static_cast<double>(layer.transformLength);
    const double perBlock = (products + 3.0 * transform) * static_cast<double>(blockSize) /
                            static_cast<double>(layer.partitionLength);
    return (perBlock + std::max(perBlock, transform)) / 2.0;
}

LayerShape layerOf(std::uint64_t partitionLength, std::uint64_t first, std::uint64_t end) noexcept {
    return {partitionLength, fastLength(2 * partitionLength), first, end - first};
}

} // namespace

LayerPlan planLayers(std::uint64_t blockSize, std::uint64_t partitionCount, const BandLimit& bandLimit) {
    const std::uint64_t end = blockSize * partitionCount;
    LayerPlan best{partitionCount, {}};
    double lowest = headCost(blockSize, partitionCount);
    const auto consider = [&](std::uint64_t headPartitions, std::vector<LayerShape> layers) {
        double cost = headCost(blockSize, headPartitions);
        for (const LayerShape& layer : layers)
            cost += layerCost(layer, blockSize);
        if (cost < lowest) {
            lowest = cost;
            best = {headPartitions, std::move(layers)};
        }
    };
    for (std::uint64_t ratio = 2; ratio <= largestRatio; ratio *= 2) {
        const std::uint64_t length = ratio * blockSize;
        // Partitions that the band limit acts on stay in the head: what it cuts off leaks over a whole block.
        const std::uint64_t head = std::max(2 * ratio, bandLimit.limitedPartitions);
        if (head >= partitionCount || 2 * length > longestTransform)
            break;
        consider(head, {layerOf(length, head * blockSize, end)});
        for (std::uint64_t next = 2 * length; 2 * next <= longestTransform; next *= 2) {
            const std::uint64_t start = 2 * next;
            if (start >= end)
                break;
            if (start > head * blockSize)
                consider(head, {layerOf(length, head * blockSize, start), layerOf(next, start, end)});
        }
    }
    return best;
}

} // namespace orvane
