// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/ResponseSet.h"
#include "data/reports/ReportPage.h"

#include <array>
#include <filesystem>
#include <functional>
#include <span>
#include <vector>

namespace orvane::kestrum::tools {

/// What the ears differ by for one source on the horizontal plane.
struct InterauralPoint {
    double azimuthDegrees = 0;
    double delaySeconds = 0;          ///< Left later than right.
    std::array<double, 5> levelsDb{}; ///< Right over left, per band of octaveCentresHz.
};

InterauralPoint interauralPoint(double azimuthDegrees, const std::array<Samples, 2>& ears, double sampleRate,
                                double highestHz);

using ResponseSets = std::vector<std::reference_wrapper<const ResponseSet>>;

/// Writes the tables of finished files of responses and says how they are drawn: time and level between the ears,
/// spectra, diffuse field, a pair of responses. The single views are of the first set.
/// @param sets one at least.
/// @param source the measurement that the sets were made of, drawn as points; may be empty.
std::vector<Plot> writeHeadPlots(const ResponseSets& sets, std::span<const InterauralPoint> source,
                                 const std::filesystem::path& folder);

} // namespace orvane::kestrum::tools
