// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/fft/HalfLength.h"

#include <emmintrin.h>

#include <cmath>
#include <numbers>

namespace orvane::fft {

namespace {

// Bins k and h-k are conjugates turned around, so that both are computed from the same two values: X[h-k] and
// Z[h-k] are the conjugates of X[k] and Z[k] with the product's sign exchanged.

struct Pair {
    Complex low;
    Complex high;
};

Complex conjugate(Complex z) noexcept { return {z.re, -z.im}; }
Complex sum(Complex a, Complex b) noexcept { return {a.re + b.re, a.im + b.im}; }
Complex difference(Complex a, Complex b) noexcept { return {a.re - b.re, a.im - b.im}; }

Pair apart(Complex low, Complex high, Complex t) noexcept {
    const Complex s = sum(low, conjugate(high));
    const Complex d = difference(low, conjugate(high));
    const Complex halfSum{0.5f * s.re, 0.5f * s.im};
    const Complex product{d.re * t.re - d.im * t.im, d.im * t.re + d.re * t.im};
    return {sum(halfSum, product), conjugate(difference(halfSum, product))};
}

/// With i w^-k = 2 t*.
Pair together(Complex low, Complex high, Complex t) noexcept {
    const Complex s = sum(low, conjugate(high));
    const Complex d = difference(low, conjugate(high));
    const Complex twice{d.re + d.re, d.im + d.im};
    const Complex product{twice.re * t.re + twice.im * t.im, twice.im * t.re - twice.re * t.im};
    return {sum(s, product), conjugate(difference(s, product))};
}

// The same on two bins at a time.

__m128 load(const Complex* values) noexcept { return _mm_loadu_ps(&values->re); }
void store(Complex* values, __m128 vector) noexcept { _mm_storeu_ps(&values->re, vector); }

__m128 negatedReal(__m128 vector) noexcept { return _mm_xor_ps(vector, _mm_setr_ps(-0.0f, 0, -0.0f, 0)); }
__m128 negatedImaginary(__m128 vector) noexcept {
    return _mm_xor_ps(vector, _mm_setr_ps(0, -0.0f, 0, -0.0f));
}
__m128 reversedConjugate(__m128 vector) noexcept {
    return negatedImaginary(_mm_shuffle_ps(vector, vector, _MM_SHUFFLE(1, 0, 3, 2)));
}
__m128 realParts(__m128 vector) noexcept { return _mm_shuffle_ps(vector, vector, _MM_SHUFFLE(2, 2, 0, 0)); }
__m128 imaginaryParts(__m128 vector) noexcept {
    return _mm_shuffle_ps(vector, vector, _MM_SHUFFLE(3, 3, 1, 1));
}
__m128 exchanged(__m128 vector) noexcept { return _mm_shuffle_ps(vector, vector, _MM_SHUFFLE(2, 3, 0, 1)); }

constexpr std::size_t lanes = 2;

} // namespace

HalfLength::HalfLength(std::size_t half) : half(half), twiddles(makeAlignedArray<Complex>(half / 2 + 1)) {
    for (std::size_t k = 0; k <= half / 2; ++k) {
        const double angle = std::numbers::pi * static_cast<double>(k) / static_cast<double>(half);
        twiddles[k] = {static_cast<float>(-0.5 * std::sin(angle)),
                       static_cast<float>(-0.5 * std::cos(angle))};
    }
}

void HalfLength::takeApart(const Complex* values, Complex* spectrum) const noexcept {
    const Complex first = values[0];
    const __m128 oneHalf = _mm_set1_ps(0.5f);
    std::size_t k = 1;
    for (; k + lanes <= half / 2; k += lanes) {
        const std::size_t mirrored = half - k - (lanes - 1);
        const __m128 low = load(values + k);
        const __m128 high = reversedConjugate(load(values + mirrored));
        const __m128 t = load(twiddles.get() + k);
        const __m128 halfSum = _mm_mul_ps(oneHalf, _mm_add_ps(low, high));
        const __m128 d = _mm_sub_ps(low, high);
        const __m128 product =
            _mm_add_ps(_mm_mul_ps(d, realParts(t)), _mm_mul_ps(exchanged(d), negatedReal(imaginaryParts(t))));
        store(spectrum + k, _mm_add_ps(halfSum, product));
        store(spectrum + mirrored, reversedConjugate(_mm_sub_ps(halfSum, product)));
    }
    for (; k <= half / 2; ++k) {
        const Pair bins = apart(values[k], values[half - k], twiddles[k]);
        spectrum[k] = bins.low;
        spectrum[half - k] = bins.high;
    }
    spectrum[0] = {first.re + first.im, 0};
    spectrum[half] = {first.re - first.im, 0};
}

void HalfLength::putTogether(const Complex* spectrum, Complex* values) const noexcept {
    values[0] = {spectrum[0].re + spectrum[half].re, spectrum[0].re - spectrum[half].re};
    std::size_t k = 1;
    for (; k + lanes <= half / 2; k += lanes) {
        const std::size_t mirrored = half - k - (lanes - 1);
        const __m128 low = load(spectrum + k);
        const __m128 high = reversedConjugate(load(spectrum + mirrored));
        const __m128 t = load(twiddles.get() + k);
        const __m128 d = _mm_sub_ps(low, high);
        const __m128 twice = _mm_add_ps(d, d);
        const __m128 product = _mm_add_ps(_mm_mul_ps(twice, realParts(t)),
                                          _mm_mul_ps(exchanged(twice), negatedImaginary(imaginaryParts(t))));
        const __m128 s = _mm_add_ps(low, high);
        store(values + k, _mm_add_ps(s, product));
        store(values + mirrored, reversedConjugate(_mm_sub_ps(s, product)));
    }
    for (; k <= half / 2; ++k) {
        const Pair both = together(spectrum[k], spectrum[half - k], twiddles[k]);
        values[k] = both.low;
        values[half - k] = both.high;
    }
}

} // namespace orvane::fft
