// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace orvane {

/// What the band limit of a resampled response leaves of its partitions' spectra.
///
/// Units   blockSize in samples per partition; a spectrum has blockSize + 1 bins.
struct BandLimit {
    std::uint64_t keptBins;          ///< Low bins that an early partition keeps, besides the last one of all.
    std::uint64_t limitedPartitions; ///< Early partitions that are limited; later ones keep all bins.

    constexpr bool limits(std::uint64_t partition) const noexcept { return partition < limitedPartitions; }

    /// Deliberate: the early half only, the middle one included; see Convolution::prepareSpectra().
    ///
    /// @param factor divisor of the band, 1 for no limit.
    static constexpr BandLimit of(std::uint64_t blockSize, std::uint64_t partitionCount,
                                  std::int32_t factor) noexcept {
        const std::uint64_t kept = blockSize / static_cast<std::uint64_t>(factor);
        return {kept, kept < blockSize ? (partitionCount + 1) / 2 : 0};
    }
};

} // namespace orvane
