// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/MultiplyAddKernels.h"
#include "binaural/MultiplyAddLoops.h"

#include <immintrin.h>

namespace orvane {

namespace {

/// Four complex values, real part first.
struct AvxVector {
    static constexpr std::uint64_t binCount = 4;

    struct Parts {
        __m256 re; ///< re, re
        __m256 im; ///< im, im
    };

    static __m256 load(const fft::Complex* values) noexcept {
        __m256 vector = _mm256_load_ps(&values->re);
        asm("" : "+x"(vector)); // stays in its register: the compiler would load it once for each use
        return vector;
    }

    static void store(fft::Complex* values, __m256 vector) noexcept { _mm256_store_ps(&values->re, vector); }

    /// Measured: here two loads are quicker than one that is kept.
    static Parts partsOf(const fft::Complex* values) noexcept {
        const __m256 vector = _mm256_load_ps(&values->re);
        return {_mm256_moveldup_ps(vector), _mm256_movehdup_ps(vector)};
    }

    static __m256 product(Parts a, __m256 b) noexcept {
        const __m256 exchanged = _mm256_permute_ps(b, _MM_SHUFFLE(2, 3, 0, 1));
        return _mm256_addsub_ps(_mm256_mul_ps(a.re, b), _mm256_mul_ps(a.im, exchanged));
    }

    static __m256 sum(__m256 a, __m256 b) noexcept { return _mm256_add_ps(a, b); }
};

using Loops = MultiplyAddLoops<AvxVector>;

} // namespace

const MultiplyAddKernel avxMultiplyAdd{Loops::addTerms<2>, Loops::addTermsOfTwoBlocks<1>};

} // namespace orvane
