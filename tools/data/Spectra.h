// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <complex>
#include <cstddef>
#include <memory>
#include <vector>

namespace orvane::kestrum::tools {

using Samples = std::vector<double>;
using Spectrum = std::vector<std::complex<double>>; ///< [size / 2 + 1], bins from 0 to the Nyquist frequency.

/// Real Fourier transforms of one size in double precision.
///
/// Thread  one thread per object.
/// Source  FFTW, estimated plans: the same input gives the same bits on every run.
class RealTransform {
public:
    explicit RealTransform(std::size_t size);
    ~RealTransform();
    RealTransform(const RealTransform&) = delete;
    RealTransform& operator=(const RealTransform&) = delete;

    std::size_t size() const { return length; }
    std::size_t binCount() const { return length / 2 + 1; }

    /// @param signal at most size() samples; the rest counts as 0.
    Spectrum forward(const Samples& signal);

    /// @return size() samples; inverse(forward(x)) is x.
    Samples inverse(const Spectrum& spectrum);

    /// The causal minimum-phase spectrum with these magnitudes.
    ///
    /// Shape   [binCount()]; magnitudes below 1e-6 of the largest are raised to it, so that the logarithm
    ///         stays finite.
    /// Source  folding of the real cepstrum, Oppenheim and Schafer, Discrete-Time Signal Processing.
    Spectrum minimumPhase(const Samples& magnitudes);

private:
    struct Plans;
    std::size_t length;
    std::unique_ptr<Plans> plans;
};

/// The smallest power of two that is not below `value`.
std::size_t powerOfTwoFrom(std::size_t value);

/// Multiplies by exp(-2 pi i f t): the signal comes later by `delaySamples`, whole or broken, round the
/// circle. The bin at the Nyquist frequency keeps its real part only, as the transform of a real signal must.
void delaySpectrum(Spectrum& spectrum, double delaySamples);

/// Magnitudes of all bins.
Samples magnitudesOf(const Spectrum& spectrum);

/// Root of the mean power over a window as wide as `octaves`, in every bin; the bin at 0 Hz takes the value
/// of the one above.
Samples smoothed(const Samples& magnitudes, double octaves);

/// Gives a mix the power that it was meant to have, in bands a third of an octave wide: where the mixed
/// responses disagree in phase, above all in the treble, a plain mix is too soft. A mix that has its power is
/// left as it is.
/// @param meantMagnitudes one per bin.
void restorePower(Spectrum& mixed, const Samples& meantMagnitudes);

} // namespace orvane::kestrum::tools
