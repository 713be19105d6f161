// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/measures/RoomMeasures.h"
#include "data/measures/SceneProbe.h"
#include "data/rooms/RoomTargets.h"

#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace orvane::kestrum::tools {

/// Everything that is measured on one Scene: left loudspeaker of the probe's default layout, default settings.
struct SceneMeasures {
    std::string_view scene;
    std::optional<RoomTarget> target; ///< None where the Scene has no reverb.
    SceneResponses responses;
    std::size_t onset = 0;   ///< Sample at which the direct sound arrives.
    Samples decayDb;         ///< energyDecayDb() of the whole response.
    OctaveDecays decays{};   ///< Of the whole response. Without reverb only the fall of a head's response.
    double decaySeconds = 0; ///< Of the whole response.
    OctaveDecays reverbDecays{}; ///< Of the reverb alone.
    double reverbDecaySeconds = 0;
    double clarity50Db = 0;
    double clarity80Db = 0;
    double directToRestDb = 0;
    std::vector<CoherenceBand> coherence; ///< Of the reverb, from full density on; empty without reverb.
    EchoDensity density;                  ///< Of the whole response from the onset on, mean of both ears.
    EchoDensity reverbDensity;            ///< Of the reverb alone, from the onset on, its decay undone.
};

/// What a reverb's density is measured with: short where it is to be full before a long window could tell.
double densityWindowSeconds(const std::optional<RoomTarget>& target);

/// @throws DataError as the probe does.
SceneMeasures measureScene(const SceneProbe& probe, std::string_view scene);

/// How far coherences lie from their target at worst, as zeroLag.
struct CoherenceError {
    double low = 0;  ///< Bands below coherenceSplitHz.
    double high = 0; ///< Bands from there up to 8 kHz.
    bool within() const { return low <= coherenceToleranceLow && high <= coherenceToleranceHigh; }
};

CoherenceError coherenceError(std::span<const CoherenceBand> measured, std::span<const CoherenceBand> target);

/// Whether the figures that have tolerances keep within them.
bool decayWithin(const SceneMeasures& measures);
bool clarityWithin(const SceneMeasures& measures);

/// Whether the reverb is dense by its time, as far as its window can tell: at full density from then on, a window that
/// begins there is full throughout.
bool densityWithin(const SceneMeasures& measures);

/// Whether every octave that has a range keeps to it; one without a decay time does not.
bool shapeWithin(const OctaveDecays& decays, const RoomTarget& target);

} // namespace orvane::kestrum::tools
