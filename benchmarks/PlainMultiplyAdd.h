// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "binaural/fft/Complex.h"

#include <cstdint>

namespace bench {

// The plain loop over one term and one ear, as the compiler makes it for either instruction set.
void plainMultiplyAddSse2(orvane::fft::Complex* sum, const orvane::fft::Complex* a,
                          const orvane::fft::Complex* b, std::uint64_t count) noexcept;
void plainMultiplyAddAvx(orvane::fft::Complex* sum, const orvane::fft::Complex* a,
                         const orvane::fft::Complex* b, std::uint64_t count) noexcept;

} // namespace bench
