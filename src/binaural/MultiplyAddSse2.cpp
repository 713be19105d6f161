// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/MultiplyAddKernels.h"
#include "binaural/MultiplyAddLoops.h"

#include <emmintrin.h>

namespace orvane {

namespace {

/// Two complex values, real part first.
struct Sse2Vector {
    static constexpr std::uint64_t binCount = 2;

    struct Parts {
        __m128 re; ///< re, re
        __m128 im; ///< -im, im: adding the negated product is subtracting it, to the bit.
    };

    static __m128 load(const fft::Complex* values) noexcept {
        __m128 vector = _mm_load_ps(&values->re);
        asm("" : "+x"(vector)); // stays in its register: the compiler would load it once for each use
        return vector;
    }

    static void store(fft::Complex* values, __m128 vector) noexcept { _mm_store_ps(&values->re, vector); }

    static Parts partsOf(const fft::Complex* values) noexcept {
        const __m128 vector = load(values);
        const __m128 signs = _mm_setr_ps(-0.0f, 0.0f, -0.0f, 0.0f);
        return {arranged<_MM_SHUFFLE(2, 2, 0, 0)>(vector),
                _mm_xor_ps(arranged<_MM_SHUFFLE(3, 3, 1, 1)>(vector), signs)};
    }

    static __m128 product(Parts a, __m128 b) noexcept {
        return _mm_add_ps(_mm_mul_ps(a.re, b), _mm_mul_ps(a.im, arranged<_MM_SHUFFLE(2, 3, 0, 1)>(b)));
    }

    static __m128 sum(__m128 a, __m128 b) noexcept { return _mm_add_ps(a, b); }

private:
    /// The integer shuffle, as the one for floats overwrites its operand and needs a copy first.
    template <int order>
    static __m128 arranged(__m128 vector) noexcept {
        return _mm_castsi128_ps(_mm_shuffle_epi32(_mm_castps_si128(vector), order));
    }
};

using Loops = MultiplyAddLoops<Sse2Vector>;

} // namespace

const MultiplyAddKernel sse2MultiplyAdd{Loops::addTerms<2>, Loops::addTermsOfTwoBlocks<1>};

} // namespace orvane
