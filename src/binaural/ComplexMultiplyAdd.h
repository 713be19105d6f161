// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"
#include "binaural/fft/Complex.h"

#include <cstdint>

namespace orvane {

/// `sum[k] += a[k] * b[k]` as a plain complex product, each real operation rounded to 32-bit float:
/// re += a.re*b.re - a.im*b.im, im += b.im*a.re + a.im*b.re.
///
/// Shape   sum, a, b [count]; they must not overlap.
void complexMultiplyAdd(fft::Complex* sum, const fft::Complex* a, const fft::Complex* b,
                        std::uint64_t count) noexcept ORVANE_REALTIME;

} // namespace orvane
