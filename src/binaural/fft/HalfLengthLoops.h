// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "binaural/fft/Complex.h"

#include <cstddef>

namespace orvane::fft {

/// The loops of HalfLengthKernel on vectors of `Vector::lanes` values. Any vector gives the same bits.
///
/// Bins k and h-k are conjugates turned around, so that both are computed from the same two values: X[h-k] and
/// Z[h-k] are the conjugates of X[k] and Z[k] with the product's sign exchanged.
///
/// `Vector` has internal linkage, and so have these functions: none of them is merged with another file's.
template <typename Vector>
struct HalfLengthLoops {
    static void takeApart(const Complex* values, Complex* spectrum, const Complex* twiddles,
                          std::size_t half) noexcept {
        const Complex first = values[0];
        std::size_t k = 1;
        for (; k + Vector::lanes <= half / 2; k += Vector::lanes) {
            const std::size_t mirrored = half - k - (Vector::lanes - 1);
            const auto low = Vector::load(values + k);
            const auto high = Vector::reversedConjugate(Vector::load(values + mirrored));
            const auto t = Vector::load(twiddles + k);
            const auto halfSum = Vector::product(Vector::filled(0.5f), Vector::sum(low, high));
            const auto d = Vector::difference(low, high);
            const auto im = Vector::negatedReal(Vector::imaginaryParts(t));
            const auto product = Vector::sum(Vector::product(d, Vector::realParts(t)),
                                             Vector::product(Vector::exchanged(d), im));
            Vector::store(spectrum + k, Vector::sum(halfSum, product));
            Vector::store(spectrum + mirrored,
                          Vector::reversedConjugate(Vector::difference(halfSum, product)));
        }
        for (; k <= half / 2; ++k) {
            const Complex low = values[k];
            const Complex high = conjugate(values[half - k]);
            const Complex t = twiddles[k];
            const Complex s = sum(low, high);
            const Complex halfSum{0.5f * s.re, 0.5f * s.im};
            const Complex d = difference(low, high);
            const Complex product{d.re * t.re - d.im * t.im, d.im * t.re + d.re * t.im};
            spectrum[k] = sum(halfSum, product);
            spectrum[half - k] = conjugate(difference(halfSum, product));
        }
        spectrum[0] = {first.re + first.im, 0};
        spectrum[half] = {first.re - first.im, 0};
    }

    /// With i w^-k = 2 t*.
    static void putTogether(const Complex* spectrum, Complex* values, const Complex* twiddles,
                            std::size_t half) noexcept {
        values[0] = {spectrum[0].re + spectrum[half].re, spectrum[0].re - spectrum[half].re};
        std::size_t k = 1;
        for (; k + Vector::lanes <= half / 2; k += Vector::lanes) {
            const std::size_t mirrored = half - k - (Vector::lanes - 1);
            const auto low = Vector::load(spectrum + k);
            const auto high = Vector::reversedConjugate(Vector::load(spectrum + mirrored));
            const auto t = Vector::load(twiddles + k);
            const auto s = Vector::sum(low, high);
            const auto d = Vector::difference(low, high);
            const auto twice = Vector::sum(d, d);
            const auto im = Vector::negatedImaginary(Vector::imaginaryParts(t));
            const auto product = Vector::sum(Vector::product(twice, Vector::realParts(t)),
                                             Vector::product(Vector::exchanged(twice), im));
            Vector::store(values + k, Vector::sum(s, product));
            Vector::store(values + mirrored, Vector::reversedConjugate(Vector::difference(s, product)));
        }
        for (; k <= half / 2; ++k) {
            const Complex low = spectrum[k];
            const Complex high = conjugate(spectrum[half - k]);
            const Complex t = twiddles[k];
            const Complex s = sum(low, high);
            const Complex d = difference(low, high);
            const Complex twice = sum(d, d);
            const Complex product{twice.re * t.re + twice.im * t.im, twice.im * t.re - twice.re * t.im};
            values[k] = sum(s, product);
            values[half - k] = conjugate(difference(s, product));
        }
    }

private:
    static Complex conjugate(Complex z) noexcept { return {z.re, -z.im}; }
    static Complex sum(Complex a, Complex b) noexcept { return {a.re + b.re, a.im + b.im}; }
    static Complex difference(Complex a, Complex b) noexcept { return {a.re - b.re, a.im - b.im}; }
};

} // namespace orvane::fft
