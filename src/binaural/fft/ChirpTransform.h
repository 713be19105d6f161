// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"
#include "binaural/fft/AlignedArray.h"
#include "binaural/fft/Complex.h"
#include "binaural/fft/Plans.h"

#include <cstddef>

namespace orvane::fft {

/// Forward transform of complex values of any length, as a circular convolution with a chirp over a longer
/// length that the library transforms quickly and without allocating.
///
/// Thread  made on threads that may wait; transform() on one thread at a time per object.
/// Errors  std::bad_alloc at construction only.
/// Source  L. Bluestein, "A linear filtering approach to the computation of discrete Fourier transform",
///         IEEE Trans. Audio Electroacoust. 18, 1970.
class ChirpTransform {
public:
    explicit ChirpTransform(std::size_t valueCount);

    /// Replaces the values by their transform.
    void transform() noexcept ORVANE_REALTIME;

    Complex* values() const noexcept ORVANE_REALTIME { return work.get(); } ///< [valueCount]

private:
    void makeChirpSpectrum();

    std::size_t length;
    std::size_t paddedLength;
    AlignedArray<Complex> chirp;         ///< [length]
    AlignedArray<Complex> chirpSpectrum; ///< [paddedLength], of the conjugate chirp, scaled.
    AlignedArray<Complex> work;          ///< [paddedLength]
    AlignedArray<Complex> workSpectrum;  ///< [paddedLength]
    Plan forwardPlan;
    Plan backwardPlan;
};

} // namespace orvane::fft
