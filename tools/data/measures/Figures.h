// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/Grid.h"
#include "data/measures/Rendering.h"

#include <array>
#include <span>
#include <string>
#include <vector>

namespace orvane::kestrum::tools {

/// How much later the left ear hears than the right: the peak of the correlation between the ears, 100 to
/// 1500 Hz. Positive for a source on the right.
double interauralDelaySeconds(const Samples& left, const Samples& right, double sampleRate);

/// Power of a response between two frequencies, in decibels over a mean bin power of 1.
double bandLevelDb(const Samples& response, double sampleRate, double fromHz, double toHz);

/// The octave bands of the level figures: 500 Hz to 8 kHz.
inline constexpr std::array<double, 5> octaveCentresHz{500, 1000, 2000, 4000, 8000};

/// Level of the right ear over the left in each octave band. Bands are cut at `highestHz`.
std::array<double, 5> interauralLevelsDb(const std::array<Samples, 2>& ears, double sampleRate,
                                         double highestHz);

/// One third-octave band of the diffuse field.
struct BandLevel {
    double centreHz = 0;
    double levelDb = 0;
};

/// The solid-angle mean of the power of both ears in third-octave bands from 250 Hz on; the last band is cut
/// at `highestHz`.
std::vector<BandLevel> diffuseBands(std::span<const std::array<Samples, 2>> responses,
                                    std::span<const double> weights, double sampleRate, double highestHz);

/// Mean of the bands' levels: what the level of a set is, in decibels.
double meanLevelDb(std::span<const BandLevel> bands);

/// How two sets of responses for the same directions differ between the ears.
struct InterauralErrors {
    std::size_t directionCount = 0;
    double worstDelaySeconds = 0;
    double meanLevelDb = 0; ///< Over directions and octave bands.
    double worstLevelDb = 0;
    std::array<double, 5> meanLevelByOctaveDb{};
};

/// One direction twice.
struct ResponsePair {
    std::array<Samples, 2> reference;
    double referenceRate = 0;
    std::array<Samples, 2> made;
    double madeRate = 0;
};

/// Collects the errors of pairs, one after the other.
class InterauralComparison {
public:
    explicit InterauralComparison(double comparedToHz) : highestHz(comparedToHz) {}
    void add(const ResponsePair& pair);
    InterauralErrors errors() const;

private:
    double highestHz;
    InterauralErrors sum;
};

/// Median of what the near and the far ears keep. Directions within 5 degrees of the median plane have
/// neither.
struct KeptMedians {
    double near = 0;
    double far = 0;
};
KeptMedians keptMedians(std::span<const KeptEnergy> kept, std::span<const GridPlace> places);

/// One figure beside its goal.
struct Figure {
    std::string name;
    double value = 0;
    double goal = 0;
    bool atLeast = false; ///< The goal is a floor, not a ceiling.
    std::string unit;

    bool met() const { return atLeast ? value >= goal : value <= goal; }
};

} // namespace orvane::kestrum::tools
