// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/fft/HalfLength.h"

#include <cmath>
#include <numbers>

namespace orvane::fft {

HalfLength::HalfLength(std::size_t half, InstructionSet set)
    : kernel(set >= InstructionSet::avx ? avxHalfLength : sse2HalfLength),
      half(half),
      twiddles(makeAlignedArray<Complex>(half / 2 + 1)) {
    for (std::size_t k = 0; k <= half / 2; ++k) {
        const double angle = std::numbers::pi * static_cast<double>(k) / static_cast<double>(half);
        twiddles[k] = {static_cast<float>(-0.5 * std::sin(angle)),
                       static_cast<float>(-0.5 * std::cos(angle))};
    }
}

void HalfLength::takeApart(const Complex* values, Complex* spectrum) const noexcept {
    kernel.takeApart(values, spectrum, twiddles.get(), half);
}

void HalfLength::putTogether(const Complex* spectrum, Complex* values) const noexcept {
    kernel.putTogether(spectrum, values, twiddles.get(), half);
}

} // namespace orvane::fft
