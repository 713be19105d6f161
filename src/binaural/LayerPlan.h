// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "binaural/BandLimit.h"

#include <bit>
#include <cstdint>
#include <vector>

namespace orvane {

/// One size of partitions, and the part of the response that it serves.
///
/// Units   samples.
struct LayerShape {
    std::uint64_t partitionLength; ///< A multiple of the block.
    std::uint64_t transformLength; ///< At least two partitions, of small prime factors.
    std::uint64_t
        firstSample; ///< Of the response; at least two partitions, so that one's time is there to work.
    std::uint64_t sampleCount; ///< Of the response, from there on; the last partition may be filled in part.

    std::uint64_t partitionCount() const noexcept {
        return (sampleCount + partitionLength - 1) / partitionLength;
    }
};

/// How a long response is divided: a head in partitions of the block, then layers of larger ones.
struct LayerPlan {
    std::uint64_t headPartitions;   ///< All of them if no layer pays.
    std::vector<LayerShape> layers; ///< Up to two, by their place in the response.
};

/// What a real transform of one length costs, in complex products with their sums.
///
/// Source  measured: 0.09 ns per sample and octave with the copies around it, 0.3 ns per product.
constexpr std::uint64_t transformCost(std::uint64_t length) noexcept {
    return length * (static_cast<std::uint64_t>(std::bit_width(length)) - 1) * 3 / 10;
}

/// Chooses what makes mean and worst block cheapest; the same on every machine, since results depend on it.
///
/// Units   blockSize in samples; partitionCount of partitions of the block.
/// Thread  building thread.
LayerPlan planLayers(std::uint64_t blockSize, std::uint64_t partitionCount, const BandLimit& bandLimit);

} // namespace orvane
