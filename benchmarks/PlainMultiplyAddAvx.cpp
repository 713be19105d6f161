// SPDX-License-Identifier: GPL-3.0-or-later
#include "PlainMultiplyAdd.h"

namespace bench {

void plainMultiplyAddAvx(orvane::fft::Complex* __restrict sum, const orvane::fft::Complex* __restrict a,
                         const orvane::fft::Complex* __restrict b, std::uint64_t count) noexcept {
    for (std::uint64_t k = 0; k < count; ++k) {
        sum[k].re += a[k].re * b[k].re - a[k].im * b[k].im;
        sum[k].im += b[k].im * a[k].re + a[k].im * b[k].re;
    }
}

} // namespace bench
