// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/PartitionedSpectrum.h"

#include <algorithm>

namespace orvane {

void ComplexBlock::clear() noexcept { std::fill_n(data, count, fft::Complex{0, 0}); }

PartitionedSpectrum::PartitionedSpectrum(std::uint64_t partitionCount, std::uint64_t blockSize)
    : values(fft::makeAlignedArray<fft::Complex>(partitionCount * slotStride(blockSize))) {
    slots.reserve(partitionCount);
    for (std::uint64_t index = 0; index < partitionCount; ++index)
        slots.emplace_back(values.get() + index * slotStride(blockSize), blockSize + 1);
}

} // namespace orvane
