// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"
#include "binaural/ComplexBlock.h"
#include "binaural/fft/AlignedArray.h"
#include "binaural/fft/Complex.h"

#include <cstdint>
#include <vector>

namespace orvane {

/// The spectra of a signal's partitions, one behind the other in memory, which keeps the loops over them
/// streaming.
///
/// Shape   [partitionCount][blockSize + 1], zero-filled, each partition 64-byte aligned: a distance of just
///         blockSize + 1 values would leave every other one across the vector units' lines.
/// Thread  the constructor allocates; slot() is fit for the audio thread.
class PartitionedSpectrum {
public:
    PartitionedSpectrum(std::uint64_t partitionCount, std::uint64_t blockSize);

    /// Values from one partition's start to the next one's.
    static constexpr std::uint64_t slotStride(std::uint64_t blockSize) noexcept {
        constexpr std::uint64_t line = fft::alignment / sizeof(fft::Complex);
        return (blockSize + 1 + line - 1) / line * line;
    }

    /// A view of one partition's spectrum.
    ComplexBlock& slot(std::uint64_t index) noexcept ORVANE_REALTIME { return slots[index]; }
    const ComplexBlock& slot(std::uint64_t index) const noexcept ORVANE_REALTIME { return slots[index]; }
    std::uint64_t slotCount() const noexcept ORVANE_REALTIME { return slots.size(); }

private:
    fft::AlignedArray<fft::Complex> values;
    std::vector<ComplexBlock> slots;
};

} // namespace orvane
