// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/MeasuredSet.h"

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace orvane::kestrum::tools {

// What room acoustics measures on an impulse response. Everything is reckoned in double precision; sample 0 of a
// response is the instant at which the impulse went in.

using EarResponses = std::array<Samples, 2>; ///< [2][samples], left first.

/// A decay time and how it was found.
struct DecayTime {
    double seconds = 0; ///< Time for 60 dB at the slope of the fitted range; 0 when there is no such range.
    int rangeDb = 0;    ///< 30 (T30: -5 to -35 dB), 20 (T20: -5 to -25 dB), or 0: nothing to fit.
};

/// The octave bands of the room's figures, 125 Hz to 8 kHz.
inline constexpr std::array<double, 7> roomOctavesHz{125, 250, 500, 1000, 2000, 4000, 8000};

using OctaveDecays = std::array<DecayTime, roomOctavesHz.size()>;

/// First sample that is within 20 dB of the largest one at either ear: the arrival of the direct sound, from
/// which early and late are told apart.
/// Source  ISO 3382-1:2009, A.2.
std::size_t onsetOf(const EarResponses& response);

/// The part of a response that one octave band holds. The filter (Butterworth, three poles at either edge) runs
/// backwards in time, so that it rings before the sound instead of lengthening a short decay.
///
/// Shape   longer than `response`: the time that the filter rings in front of its first sample comes first.
/// Source  Jacobsen and Rindel, Time reversed decay measurements, J. Sound Vib. 117, 1987.
Samples octaveBand(std::span<const double> response, double sampleRate, double centreHz);

/// Energy that is still to come, by backward integration, in decibels under the whole.
///
/// Shape   one value per sample up to where the decay meets its noise floor; what the noise hides is put back as
///         an exponential of the same slope.
/// Source  Schroeder, New method of measuring reverberation time, JASA 37, 1965; the meeting point after
///         Lundeby, Vigran, Bietz and Vorlaender, Uncertainties of measurements in room acoustics, Acustica 81,
///         1995.
Samples energyDecayDb(std::span<const double> response, double sampleRate);

/// The same with the energies of both ears added.
Samples energyDecayDb(const EarResponses& response, double sampleRate);

/// T30 of a decay curve, or T20 where the curve does not reach down to -35 dB.
/// Source  ISO 3382-1:2009, line of least squares over -5 to -35 or -5 to -25 dB.
DecayTime decayTime(std::span<const double> decayDb, double sampleRate);

/// Decay time of every octave band, both ears' energies added. Bands that do not lie below the Nyquist frequency
/// have none.
OctaveDecays octaveDecayTimes(const EarResponses& response, double sampleRate);

/// Mean of the decay times at 500 Hz and 1 kHz, in seconds; 0 when either is missing.
double midDecaySeconds(const OctaveDecays& decays);

/// Energy up to `earlySeconds` behind the onset over the energy after it, both ears, in decibels: 0.05 gives C50,
/// 0.08 gives C80. Bounded to +/-120 dB.
/// Source  ISO 3382-1:2009, A.2.3.
double clarityDb(const EarResponses& response, double sampleRate, double earlySeconds);

/// Energy of the direct sound over the energy of everything else, both ears, in decibels; each comes from a
/// rendering of its own. Bounded to +/-120 dB.
double directToRestDb(const EarResponses& direct, const EarResponses& rest);

/// Likeness of the ears in one third-octave band.
///
/// With L and R the spectra of the ears and sums over the bins between the band's edges,
///
///     zeroLag   = sum Re(L conj(R)) / sqrt(sum |L|^2 sum |R|^2)    -1 to 1
///     magnitude = |sum L conj(R)|   / sqrt(sum |L|^2 sum |R|^2)     0 to 1
///
/// Without lag, since a diffuse field favours none. Over a set of directions the sums run over these as well,
/// weighted by the share of the sphere each stands for: that is the likeness of the ears in a diffuse field.
struct CoherenceBand {
    double centreHz = 0; ///< Of the base-two series round 1 kHz.
    double zeroLag = 0;
    double magnitude = 0;
    double freedom =
        0; ///< Bandwidth times duration. The estimate scatters by about 1 / sqrt(2 * freedom); not
           ///< bounded (and so 0) where it is exact, over directions.
};

/// Coherence of the late part of a response, from `fromSeconds` behind sample 0 on. Per band the decay is undone
/// first (both ears by the same exponential, from the band's own slope), down to 40 dB under its start or to the
/// noise: else the first few milliseconds of a decay would be all that counts, and the estimate would scatter.
///
/// @return bands from 100 Hz up to those wholly below the Nyquist frequency; none when nothing sounds.
std::vector<CoherenceBand> lateCoherence(const EarResponses& response, double sampleRate, double fromSeconds);

/// Coherence of the ears in a diffuse field, from a head's responses, in the same bands.
/// @param weights one per response, any common scale.
std::vector<CoherenceBand> diffuseFieldCoherence(std::span<const EarResponses> responses,
                                                 std::span<const double> weights, double sampleRate);

/// How dense the echoes are round every step of time: the share of samples that lie outside one standard
/// deviation, over the share that Gaussian noise has there. 0 for single echoes, 1 for a full density.
struct EchoDensity {
    double stepSeconds = 0;
    double windowSeconds = 0;
    Samples
        values; ///< Of windows centred at 0, stepSeconds, 2 stepSeconds...; 0 where all is 100 dB under the peak.
    double fullSeconds = 0; ///< Centre of the first window that reaches 1; negative when none does.
};

/// @param decaySeconds decay time that is undone first, so that the fall inside the window does not pass for
///        sparseness; 0 leaves the response as it is, as the authors do.
/// Source  Abel and Huang, A simple, robust measure of reverberation echo density, AES 121, 2006: Hann window,
///         weights that sum to 1.
EchoDensity echoDensity(std::span<const double> response, double sampleRate, double decaySeconds = 0,
                        double windowSeconds = 0.02);

} // namespace orvane::kestrum::tools
