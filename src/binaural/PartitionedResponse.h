// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"
#include "binaural/fft/AlignedArray.h"
#include "binaural/fft/Complex.h"
#include "binaural/fft/RealTransform.h"

#include <cstdint>
#include <vector>

namespace orvane {

class SampleBuffer;

/// The spectra of a stereo response's partitions, of which a replacement transforms only those that differ.
///
/// Slots run from the last partition to the first, so that they meet an input's spectra oldest first. The band
/// limit acts on the early half of the partitions, the middle one included; see Convolution, whose spectra these
/// equal but for the sign of zeros.
///
/// Thread  the constructor allocates; everything else is fit for the audio thread.
class PartitionedResponse {
public:
    static constexpr std::uint64_t earCount = 2;

    /// Starts as a response of zeros.
    PartitionedResponse(std::uint64_t blockSize, std::uint64_t partitionCount, std::int32_t bandLimitFactor);

    /// The first slot whose partition differs in either ear, by bits; slotCount() if none does.
    ///
    /// Shape   impulseResponse [2][at least blockSize * partitionCount].
    std::uint64_t firstChangedSlot(const SampleBuffer& impulseResponse) const noexcept ORVANE_REALTIME;

    /// Takes over what differs from slot `firstSlot` on.
    ///
    /// Shape   impulseResponse as above.
    /// @param transform of length 2 * blockSize.
    void replaceFrom(std::uint64_t firstSlot, const SampleBuffer& impulseResponse,
                     fft::RealTransform& transform) noexcept ORVANE_REALTIME;

    std::uint64_t slotCount() const noexcept ORVANE_REALTIME { return partitionCount; }

    /// Shape   [blockSize + 1], 64-byte aligned.
    const fft::Complex* spectrum(std::uint64_t slot, std::uint64_t ear) const noexcept ORVANE_REALTIME {
        return spectra.get() + (ear * partitionCount + slot) * slotStride;
    }

    /// Whether the slot's partition is all zeros in both ears.
    bool isSilent(std::uint64_t slot) const noexcept ORVANE_REALTIME {
        return silent[slot] != 0 && silent[partitionCount + slot] != 0;
    }

private:
    bool differs(std::uint64_t slot, std::uint64_t ear,
                 const SampleBuffer& impulseResponse) const noexcept ORVANE_REALTIME;
    void replace(std::uint64_t slot, std::uint64_t ear, const SampleBuffer& impulseResponse,
                 fft::RealTransform& transform) noexcept ORVANE_REALTIME;

    std::uint64_t blockSize;
    std::uint64_t partitionCount;
    std::uint64_t slotStride;                ///< Complex values from one spectrum to the next.
    std::uint64_t keptBins;                  ///< Low bins of a partition that the band limit leaves.
    fft::AlignedArray<fft::Complex> spectra; ///< [earCount][partitionCount][slotStride]
    fft::AlignedArray<float> present;        ///< [earCount][partitionCount][blockSize], the samples in place.
    std::vector<std::uint8_t> silent;        ///< [earCount * partitionCount], 1 where all samples are zeros.
    fft::AlignedArray<float> scratch; ///< [2 * blockSize], upper half always zero: the transform's padding.
};

} // namespace orvane
