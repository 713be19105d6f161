// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/fft/HalfLengthKernels.h"
#include "binaural/fft/HalfLengthLoops.h"

#include <emmintrin.h>

namespace orvane::fft {

namespace {

/// Two complex values, real part first.
struct Sse2Vector {
    static constexpr std::size_t lanes = 2;

    static __m128 load(const Complex* values) noexcept { return _mm_loadu_ps(&values->re); }
    static void store(Complex* values, __m128 vector) noexcept { _mm_storeu_ps(&values->re, vector); }
    static __m128 filled(float number) noexcept { return _mm_set1_ps(number); }

    static __m128 sum(__m128 a, __m128 b) noexcept { return _mm_add_ps(a, b); }
    static __m128 difference(__m128 a, __m128 b) noexcept { return _mm_sub_ps(a, b); }
    static __m128 product(__m128 a, __m128 b) noexcept { return _mm_mul_ps(a, b); } ///< Of parts.

    static __m128 realParts(__m128 a) noexcept { return _mm_shuffle_ps(a, a, _MM_SHUFFLE(2, 2, 0, 0)); }
    static __m128 imaginaryParts(__m128 a) noexcept { return _mm_shuffle_ps(a, a, _MM_SHUFFLE(3, 3, 1, 1)); }
    static __m128 exchanged(__m128 a) noexcept { return _mm_shuffle_ps(a, a, _MM_SHUFFLE(2, 3, 0, 1)); }

    static __m128 negatedReal(__m128 a) noexcept { return _mm_xor_ps(a, _mm_setr_ps(-0.0f, 0, -0.0f, 0)); }
    static __m128 negatedImaginary(__m128 a) noexcept {
        return _mm_xor_ps(a, _mm_setr_ps(0, -0.0f, 0, -0.0f));
    }
    static __m128 reversedConjugate(__m128 a) noexcept {
        return negatedImaginary(_mm_shuffle_ps(a, a, _MM_SHUFFLE(1, 0, 3, 2)));
    }
};

using Loops = HalfLengthLoops<Sse2Vector>;

} // namespace

const HalfLengthKernel sse2HalfLength{Loops::takeApart, Loops::putTogether};

} // namespace orvane::fft
