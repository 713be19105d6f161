// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "binaural/fft/Complex.h"

#include <cstddef>

namespace orvane::fft {

/// The two loops of HalfLength, with its twiddles and h at the end.
struct HalfLengthKernel {
    void (*takeApart)(const Complex* values, Complex* spectrum, const Complex* twiddles,
                      std::size_t half) noexcept;
    void (*putTogether)(const Complex* spectrum, Complex* values, const Complex* twiddles,
                        std::size_t half) noexcept;
};

// Each in a file that alone is compiled for its instructions.
extern const HalfLengthKernel sse2HalfLength;
extern const HalfLengthKernel avxHalfLength;

} // namespace orvane::fft
