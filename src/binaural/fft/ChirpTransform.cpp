// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/fft/ChirpTransform.h"

#include <algorithm>
#include <bit>
#include <complex>
#include <numbers>
#include <vector>

namespace orvane::fft {

namespace {

/// Room for the whole linear convolution. Measured over all lengths of small factors: powers of two take the
/// least time per value, five times a power of two little more, all others up to twice as much.
std::size_t paddedLengthFor(std::size_t length) noexcept {
    const std::size_t power = std::bit_ceil(2 * length - 1);
    const std::size_t fiveFold = power / 8 * 5;
    return fiveFold >= 2 * length - 1 ? fiveFold : power;
}

using Wide = std::complex<double>;

/// The transform of `size` values that lie `stride` apart, by halves down to an odd size, 1 or 5.
///
/// Shape   in [stride * size], out [size], roots [stride * size]: exp(-2 pi i k / (stride * size)).
void transformWide(const Wide* in, std::size_t stride, Wide* out, std::size_t size, const Wide* roots) {
    if (size % 2 != 0) {
        for (std::size_t k = 0; k < size; ++k) {
            out[k] = 0;
            for (std::size_t n = 0; n < size; ++n)
                out[k] += in[n * stride] * roots[k * n % size * stride];
        }
        return;
    }
    const std::size_t half = size / 2;
    transformWide(in, 2 * stride, out, half, roots);
    transformWide(in + stride, 2 * stride, out + half, half, roots);
    for (std::size_t k = 0; k < half; ++k) {
        const Wide even = out[k];
        const Wide odd = out[half + k] * roots[k * stride];
        out[k] = even + odd;
        out[half + k] = even - odd;
    }
}

/// exp(-i pi n^2 / length); the square is reduced first, so that the angle stays exact.
Wide chirpValue(std::size_t n, std::size_t length) {
    const auto reduced = static_cast<double>(n * n % (2 * length));
    return std::polar(1.0, -std::numbers::pi * reduced / static_cast<double>(length));
}

Complex narrow(Wide value) noexcept {
    return {static_cast<float>(value.real()), static_cast<float>(value.imag())};
}

/// values[k] *= factors[k]
void multiply(Complex* __restrict values, const Complex* __restrict factors, std::size_t count) noexcept {
    for (std::size_t k = 0; k < count; ++k) {
        const Complex a = values[k];
        const Complex b = factors[k];
        values[k] = {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
    }
}

} // namespace

ChirpTransform::ChirpTransform(std::size_t valueCount)
    : length(valueCount),
      paddedLength(paddedLengthFor(valueCount)),
      chirp(makeAlignedArray<Complex>(length)),
      chirpSpectrum(makeAlignedArray<Complex>(paddedLength)),
      work(makeAlignedArray<Complex>(paddedLength)),
      workSpectrum(makeAlignedArray<Complex>(paddedLength)),
      forwardPlan(planFor(Direction::forward, paddedLength)),
      backwardPlan(planFor(Direction::backward, paddedLength)) {
    for (std::size_t n = 0; n < length; ++n)
        chirp[n] = narrow(chirpValue(n, length));
    makeChirpSpectrum();
}

/// In double precision, since its error would come on top of that of every transform. The inverse transform's
/// scale goes into it.
void ChirpTransform::makeChirpSpectrum() {
    std::vector<Wide> roots(paddedLength);
    std::vector<Wide> conjugate(paddedLength);
    std::vector<Wide> spectrum(paddedLength);
    const double step = 2.0 * std::numbers::pi / static_cast<double>(paddedLength);
    for (std::size_t n = 0; n < paddedLength; ++n)
        roots[n] = std::polar(1.0, -step * static_cast<double>(n));
    for (std::size_t n = 0; n < length; ++n) {
        conjugate[n] = std::conj(chirpValue(n, length)) / static_cast<double>(paddedLength);
        if (n > 0)
            conjugate[paddedLength - n] = conjugate[n];
    }
    transformWide(conjugate.data(), 1, spectrum.data(), paddedLength, roots.data());
    std::transform(spectrum.begin(), spectrum.end(), chirpSpectrum.get(), narrow);
}

void ChirpTransform::transform() noexcept {
    multiply(work.get(), chirp.get(), length);
    std::fill_n(work.get() + length, paddedLength - length, Complex{0, 0});
    forwardPlan.run(work.get(), workSpectrum.get());
    multiply(workSpectrum.get(), chirpSpectrum.get(), paddedLength);
    backwardPlan.run(workSpectrum.get(), work.get());
    multiply(work.get(), chirp.get(), length);
}

} // namespace orvane::fft
