// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/Spectra.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace orvane::kestrum::tools {

/// How far a correction may go. Levels count from the curve's own mean between 250 Hz and 12 kHz.
struct CurveLimits {
    double largestBoostDb = 12;
    double largestCutDb = 24;
    double lowestHz = 20;     ///< Held still below.
    double highestHz = 20000; ///< Held still above; of a measured response above measuredToHz.
    double measuredToHz =
        16000; ///< Above it a measurement says more about its microphone's place than about the sound.
    double smoothingOctaves = 1.0 / 6; ///< Of a measured response.
    double softestDb = -24;            ///< The mean itself, for an equaliser with its pre-amplification.
    double loudestDb = 12;
};

/// What a head has to be filtered by for a pair of headphones: a gain at every frequency, alike for both ears.
class HeadphoneCurve {
public:
    /// Points are 1/96 of an octave apart from 10 Hz to beyond 20 kHz.
    static constexpr std::size_t pointCount = 1081;
    static double pointHz(std::size_t point);

    /// @param askedDb one gain per point; bounded here.
    /// @throws DataError when the mean level is outside the limits.
    explicit HeadphoneCurve(std::vector<double> askedDb, const CurveLimits& limits = {});

    double askedDb(double frequencyHz) const; ///< Before the limits.
    double gainDb(double frequencyHz) const;  ///< What is folded in.
    double levelDb() const {
        return level;
    } ///< Mean of gainDb() over the third octaves from 250 Hz to 12 kHz.
    double leastDb() const;
    double mostDb() const;
    bool bounded() const; ///< Whether any limit was reached.

    /// The causal minimum-phase response with these gains.
    /// @return `length` samples, cut where they end.
    Samples minimumPhase(double sampleRate, std::size_t length) const;

private:
    std::vector<double> asked;
    std::vector<double> gains;
    double level = 0;
};

/// A correction with what is to be told about its file.
struct Headphones {
    HeadphoneCurve curve;
    std::string fileName;
    std::string sha256;
    std::string copyName;    ///< Under this name a set carries the file along.
    std::string description; ///< Such as "10 filters, pre-amplification -6.2 dB".
};

/// Reads a correction.
///
/// A WAVE file, mono or stereo, is the impulse response that the headphones have where they ought to have a flat one: it is
/// smoothed and inverted, both channels' mean power for both ears, and its own level does not count. Any other file is
/// a parametric equaliser's text, taken with its pre-amplification.
///
/// @throws DataError when the file cannot be read or makes no sense.
Headphones readHeadphones(const std::filesystem::path& file, const CurveLimits& limits = {});

/// The correction of an impulse response, before any limits: the inverse of its smoothed spectrum at a mean of 0 dB.
/// @param channels one or two, of equal length.
/// @throws DataError when it is silent or holds samples that are no numbers.
std::vector<double> inverseOfResponse(const std::vector<Samples>& channels, double sampleRate,
                                      const CurveLimits& limits = {});

} // namespace orvane::kestrum::tools
