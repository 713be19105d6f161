// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"
#include "binaural/fft/AlignedArray.h"
#include "binaural/fft/Complex.h"

#include <cstdint>

namespace orvane {

/// A run of complex values, either owned or a view into a larger run.
///
/// Shape   [count], interleaved real and imaginary; owned memory is zero-filled and 64-byte aligned.
/// Thread  constructors of owning blocks allocate; everything else is fit for the audio thread.
class ComplexBlock {
public:
    /// An owning block.
    explicit ComplexBlock(std::uint64_t valueCount)
        : count(valueCount), owned(fft::makeAlignedArray<fft::Complex>(valueCount)) {
        data = owned.get();
    }

    /// A view of values that outlive it.
    ComplexBlock(fft::Complex* values, std::uint64_t valueCount) noexcept : count(valueCount), data(values) {}

    bool ownsData() const noexcept { return owned != nullptr; }
    void clear() noexcept ORVANE_REALTIME;

    std::uint64_t count;
    fft::Complex* data = nullptr; ///< [count], owned or borrowed.

private:
    fft::AlignedArray<fft::Complex> owned; ///< Empty in a view.
};

} // namespace orvane
