// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/measures/SceneMeasures.h"

#include <algorithm>
#include <cmath>

namespace orvane::kestrum::tools {

namespace {

constexpr double longWindowSeconds = 0.02; // the authors' own

/// Mean of both ears' densities and of their times, counted from the onset.
EchoDensity densityFrom(const EarResponses& response, std::size_t onset, double sampleRate,
                        double decaySeconds, double windowSeconds) {
    const auto ofEar = [&](std::size_t ear) {
        return echoDensity(std::span(response[ear]).subspan(std::min(onset, response[ear].size())),
                           sampleRate, decaySeconds, windowSeconds);
    };
    EchoDensity density = ofEar(leftEar);
    const EchoDensity other = ofEar(rightEar);
    std::ranges::transform(density.values, other.values, density.values.begin(),
                           [](double one, double two) { return (one + two) / 2; });
    density.fullSeconds = density.fullSeconds < 0 || other.fullSeconds < 0
                              ? -1.0
                              : (density.fullSeconds + other.fullSeconds) / 2;
    return density;
}

} // namespace

double densityWindowSeconds(const std::optional<RoomTarget>& target) {
    constexpr double shortWindowSeconds = 0.005;
    return target && target->fullDensitySeconds < longWindowSeconds ? shortWindowSeconds : longWindowSeconds;
}

SceneMeasures measureScene(const SceneProbe& probe, std::string_view scene) {
    const double sampleRate = probe.settings().sampleRate;
    SceneMeasures measures;
    measures.scene = scene;
    measures.target = targetOf(scene);
    measures.responses = probe.responses(scene);
    const SceneResponses& responses = measures.responses;
    measures.onset = onsetOf(responses.direct);
    measures.decayDb = energyDecayDb(responses.full, sampleRate);
    measures.decays = octaveDecayTimes(responses.full, sampleRate);
    measures.decaySeconds = midDecaySeconds(measures.decays);
    measures.reverbDecays = octaveDecayTimes(responses.reverb, sampleRate);
    measures.reverbDecaySeconds = midDecaySeconds(measures.reverbDecays);
    measures.clarity50Db = clarityDb(responses.full, sampleRate, 0.05);
    measures.clarity80Db = clarityDb(responses.full, sampleRate, 0.08);
    measures.directToRestDb = directToRestDb(responses.direct, responses.rest());
    measures.density = densityFrom(responses.full, measures.onset, sampleRate, 0, longWindowSeconds);
    measures.reverbDensity = densityFrom(responses.reverb, measures.onset, sampleRate,
                                         measures.reverbDecaySeconds, densityWindowSeconds(measures.target));
    if (measures.target)
        measures.coherence = lateCoherence(responses.reverb, sampleRate,
                                           static_cast<double>(measures.onset) / sampleRate +
                                               measures.target->fullDensitySeconds);
    return measures;
}

CoherenceError coherenceError(std::span<const CoherenceBand> measured,
                              std::span<const CoherenceBand> target) {
    constexpr double highestHz = 8500; // the band at 8 kHz included
    CoherenceError error;
    for (std::size_t band = 0; band < std::min(measured.size(), target.size()); ++band) {
        if (measured[band].centreHz > highestHz)
            break;
        double& worst = measured[band].centreHz < coherenceSplitHz ? error.low : error.high;
        worst = std::max(worst, std::abs(measured[band].zeroLag - target[band].zeroLag));
    }
    return error;
}

bool decayWithin(const SceneMeasures& measures) {
    return measures.target && std::abs(measures.decaySeconds - measures.target->decaySeconds) <=
                                  decayTolerance * measures.target->decaySeconds;
}

bool clarityWithin(const SceneMeasures& measures) {
    return measures.target &&
           std::abs(measures.clarity50Db - measures.target->clarity50Db) <= clarityToleranceDb;
}

bool densityWithin(const SceneMeasures& measures) {
    const EchoDensity& density = measures.reverbDensity;
    return measures.target && density.fullSeconds >= 0 &&
           density.fullSeconds <= measures.target->fullDensitySeconds + density.windowSeconds / 2;
}

bool shapeWithin(const OctaveDecays& decays, const RoomTarget& target) {
    const double middle = midDecaySeconds(decays);
    return middle > 0 && std::ranges::all_of(target.decayShapes(), [&](const DecayShape& shape) {
               const auto octave = std::ranges::find(roomOctavesHz, shape.centreHz) - roomOctavesHz.begin();
               return shape.holds(decays[static_cast<std::size_t>(octave)].seconds / middle);
           });
}

} // namespace orvane::kestrum::tools
