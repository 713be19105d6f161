// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/fft/HalfLengthKernels.h"
#include "binaural/fft/HalfLengthLoops.h"

#include <immintrin.h>

namespace orvane::fft {

namespace {

/// Four complex values, real part first.
struct AvxVector {
    static constexpr std::size_t lanes = 4;

    static __m256 load(const Complex* values) noexcept { return _mm256_loadu_ps(&values->re); }
    static void store(Complex* values, __m256 vector) noexcept { _mm256_storeu_ps(&values->re, vector); }
    static __m256 filled(float number) noexcept { return _mm256_set1_ps(number); }

    static __m256 sum(__m256 a, __m256 b) noexcept { return _mm256_add_ps(a, b); }
    static __m256 difference(__m256 a, __m256 b) noexcept { return _mm256_sub_ps(a, b); }
    static __m256 product(__m256 a, __m256 b) noexcept { return _mm256_mul_ps(a, b); } ///< Of parts.

    static __m256 realParts(__m256 a) noexcept { return _mm256_moveldup_ps(a); }
    static __m256 imaginaryParts(__m256 a) noexcept { return _mm256_movehdup_ps(a); }
    static __m256 exchanged(__m256 a) noexcept { return _mm256_permute_ps(a, _MM_SHUFFLE(2, 3, 0, 1)); }

    static __m256 negatedReal(__m256 a) noexcept {
        return _mm256_xor_ps(a, _mm256_setr_ps(-0.0f, 0, -0.0f, 0, -0.0f, 0, -0.0f, 0));
    }
    static __m256 negatedImaginary(__m256 a) noexcept {
        return _mm256_xor_ps(a, _mm256_setr_ps(0, -0.0f, 0, -0.0f, 0, -0.0f, 0, -0.0f));
    }
    static __m256 reversedConjugate(__m256 a) noexcept {
        const __m256 reversedHalves = _mm256_permute_ps(a, _MM_SHUFFLE(1, 0, 3, 2));
        return negatedImaginary(_mm256_permute2f128_ps(reversedHalves, reversedHalves, 1));
    }
};

using Loops = HalfLengthLoops<AvxVector>;

} // namespace

const HalfLengthKernel avxHalfLength{Loops::takeApart, Loops::putTogether};

} // namespace orvane::fft
