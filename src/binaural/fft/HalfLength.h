// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/InstructionSet.h"
#include "base/Realtime.h"
#include "binaural/fft/AlignedArray.h"
#include "binaural/fft/Complex.h"
#include "binaural/fft/HalfLengthKernels.h"

#include <cstddef>

namespace orvane::fft {

/// A real transform of even length 2h by a complex one of h values: even samples as their real and odd ones as
/// their imaginary parts, whose transform Z holds the spectrum X of all,
///     X[k] = E[k] + w^k O[k], E[k] = (Z[k] + Z*[h-k]) / 2, O[k] = (Z[k] - Z*[h-k]) / 2i, w = exp(-i pi / h).
///
/// Thread  made on threads that may wait; the rest by any number of threads at a time.
/// Errors  std::bad_alloc at construction only.
/// Source  J. W. Cooley, P. A. W. Lewis, P. D. Welch, "The fast Fourier transform algorithm: programming
///         considerations in the calculation of sine, cosine and Laplace transforms", J. Sound Vib. 12, 1970.
class HalfLength {
public:
    /// @param half h, 1 or more.
    /// @param set of the processor; all give the same bits.
    explicit HalfLength(std::size_t half, InstructionSet set = bestInstructionSet());

    /// X from Z.
    ///
    /// Shape   values [h]; spectrum [h + 1], which may be the same memory.
    void takeApart(const Complex* values, Complex* spectrum) const noexcept ORVANE_REALTIME;

    /// 2 Z from X, so that the unscaled transform of h values back gives what one of 2h would.
    ///
    /// Shape   spectrum [h + 1], of which the imaginary parts of the first and last bin are not read; values
    ///         [h], other memory.
    void putTogether(const Complex* spectrum, Complex* values) const noexcept ORVANE_REALTIME;

private:
    HalfLengthKernel kernel;
    std::size_t half;
    AlignedArray<Complex> twiddles; ///< [half / 2 + 1], w^k / 2i.
};

} // namespace orvane::fft
