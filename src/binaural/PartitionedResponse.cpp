// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/PartitionedResponse.h"

#include "base/SampleBuffer.h"
#include "binaural/PartitionedSpectrum.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace orvane {

namespace {

/// By bits: a comparison of values would take denormals for zeros where the thread flushes them.
bool areZeros(const float* samples, std::uint64_t count) noexcept {
    constexpr std::uint32_t allButTheSign = 0x7fffffff;
    return std::all_of(samples, samples + count, [](float sample) {
        return (std::bit_cast<std::uint32_t>(sample) & allButTheSign) == 0;
    });
}

} // namespace

PartitionedResponse::PartitionedResponse(std::uint64_t blockSize, std::uint64_t partitionCount,
                                         std::int32_t bandLimitFactor)
    : blockSize(blockSize),
      partitionCount(partitionCount),
      slotStride(PartitionedSpectrum::slotStride(blockSize)),
      keptBins(blockSize / static_cast<std::uint64_t>(bandLimitFactor)),
      spectra(fft::makeAlignedArray<fft::Complex>(earCount * partitionCount * slotStride)),
      present(fft::makeAlignedArray<float>(earCount * partitionCount * blockSize)),
      silent(earCount * partitionCount, 1),
      scratch(fft::makeAlignedArray<float>(2 * blockSize)) {}

std::uint64_t PartitionedResponse::firstChangedSlot(const SampleBuffer& impulseResponse) const noexcept {
    std::uint64_t slot = 0;
    while (slot < partitionCount && !differs(slot, 0, impulseResponse) && !differs(slot, 1, impulseResponse))
        ++slot;
    return slot;
}

void PartitionedResponse::replaceFrom(std::uint64_t firstSlot, const SampleBuffer& impulseResponse,
                                      fft::RealTransform& transform) noexcept {
    for (std::uint64_t slot = firstSlot; slot < partitionCount; ++slot)
        for (std::uint64_t ear = 0; ear < earCount; ++ear)
            if (differs(slot, ear, impulseResponse))
                replace(slot, ear, impulseResponse, transform);
}

bool PartitionedResponse::differs(std::uint64_t slot, std::uint64_t ear,
                                  const SampleBuffer& impulseResponse) const noexcept {
    const std::uint64_t start = (partitionCount - 1 - slot) * blockSize;
    const float* const inPlace = present.get() + ear * partitionCount * blockSize + start;
    return std::memcmp(inPlace, impulseResponse.channelPointers[ear] + start, blockSize * sizeof(float)) != 0;
}

void PartitionedResponse::replace(std::uint64_t slot, std::uint64_t ear, const SampleBuffer& impulseResponse,
                                  fft::RealTransform& transform) noexcept {
    const std::uint64_t partition = partitionCount - 1 - slot;
    const std::uint64_t start = partition * blockSize;
    const float* const samples = impulseResponse.channelPointers[ear] + start;
    std::copy_n(samples, blockSize, present.get() + ear * partitionCount * blockSize + start);

    fft::Complex* const bins = spectra.get() + (ear * partitionCount + slot) * slotStride;
    const bool zeros = areZeros(samples, blockSize);
    silent[ear * partitionCount + slot] = zeros ? 1 : 0;
    if (zeros) {
        std::fill_n(bins, blockSize + 1, fft::Complex{0, 0});
        return;
    }
    std::copy_n(samples, blockSize, scratch.get());
    transform.forward(scratch.get(), bins);
    // Deliberate: the later partitions keep their full band, and the last bin is never cleared.
    if (partition <= slot)
        std::fill(bins + keptBins, bins + blockSize, fft::Complex{0, 0});
}

} // namespace orvane
