// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/DiffuseField.h"
#include "data/head/Ears.h"
#include "data/head/LowFrequencies.h"
#include "data/head/LowerCap.h"
#include "data/head/MeasuredSet.h"
#include "data/measures/Figures.h"
#include "data/measures/Rendering.h"

#include <array>
#include <vector>

namespace orvane::kestrum::tools {

/// What can be chosen about a set. The values are the ones every set is made with.
struct BuildOptions {
    EqualisationLimits equalisation;
    LowFrequencyRange lowFrequencies;
    WindowShape window;
};

/// One finished file, with what was found out about it.
struct BuiltFile {
    ResponseSet set;
    std::vector<KeptEnergy> kept;
    KeptMedians medians;
    std::vector<BandLevel> diffuse;
    double worstDiffuseDb = 0;      ///< Largest distance of a third-octave band from 0 dB.
    InterauralErrors againstSource; ///< At the directions that the source and the grid share.
};

/// Everything that one build makes, for the files, the figures and the report.
struct BuiltSet {
    EarDecision ears;
    std::size_t mergedCount = 0;
    CapReport cap;
    double rollOffLead = 0;
    AlignedSet source;   ///< Measured directions, equalised and nothing else: what is compared with.
    AlignedSet complete; ///< With cap and low frequencies: what is interpolated.
    double originSeconds = 0;
    InterauralErrors interpolator;  ///< At all of the source's own directions.
    InterauralErrors leaveOneOut;   ///< The same with the direction asked for left out.
    std::array<BuiltFile, 3> files; ///< In the order of responseFiles.

    /// Every figure beside its goal.
    std::vector<Figure> figures() const;
};

/// Makes the three files' content of a measured set. The same set gives the same numbers, every time.
///
///     receivers -> ears -> arrivals | responses -> repeats merged -> arrivals refined -> lower cap
///       -> equalised -> low frequencies -> interpolated to the grid -> put together
///       -> resampled, windowed -> level
///
/// @throws DataError when the set cannot serve.
BuiltSet buildResponses(MeasuredSet measured, const BuildOptions& options = {});

} // namespace orvane::kestrum::tools
