// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/MultiplyAddKernels.h"
#include "binaural/MultiplyAddLoops.h"

#include <immintrin.h>

namespace orvane {

namespace {

/// Eight complex values, real part first.
struct Avx512Vector {
    static constexpr std::uint64_t binCount = 8;

    struct Parts {
        __m512 re; ///< re, re
        __m512 im; ///< -im, im: adding the negated product is subtracting it, to the bit.
    };

    static __m512 load(const fft::Complex* values) noexcept {
        __m512 vector = _mm512_load_ps(&values->re);
        asm("" : "+v"(vector)); // stays in its register: the compiler would load it once for each use
        return vector;
    }

    static void store(fft::Complex* values, __m512 vector) noexcept { _mm512_store_ps(&values->re, vector); }

    static Parts partsOf(const fft::Complex* values) noexcept {
        const __m512 vector = load(values);
        const __m512i signs = _mm512_set1_epi64(0x80000000);
        const __m512i im = _mm512_castps_si512(_mm512_movehdup_ps(vector));
        return {_mm512_moveldup_ps(vector), _mm512_castsi512_ps(_mm512_xor_si512(im, signs))};
    }

    static __m512 product(Parts a, __m512 b) noexcept {
        const __m512 exchanged = _mm512_permute_ps(b, _MM_SHUFFLE(2, 3, 0, 1));
        return _mm512_add_ps(_mm512_mul_ps(a.re, b), _mm512_mul_ps(a.im, exchanged));
    }

    static __m512 sum(__m512 a, __m512 b) noexcept { return _mm512_add_ps(a, b); }
};

using Loops = MultiplyAddLoops<Avx512Vector>;

} // namespace

const MultiplyAddKernel avx512MultiplyAdd{Loops::addTerms<1>, Loops::addTermsOfTwoBlocks<1>};

} // namespace orvane
