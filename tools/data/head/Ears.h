// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/MeasuredSet.h"

namespace orvane::kestrum::tools {

/// What the sources at the sides say about the receivers.
struct EarDecision {
    bool swapped = false;          ///< The file's first receiver was the right ear.
    double levelDifferenceDb = 0;  ///< Mean level of the near ear over the far ear.
    double arrivalLeadSeconds = 0; ///< How much earlier the near ear hears, in the mean.
};

/// Finds by level and arrival of the sources round +90 and -90 degrees which receiver is the left ear, and
/// orders the ears left, right. The file's own labels and receiver positions are not asked: they are wrong
/// often enough.
/// @throws DataError when no source stands near the sides, or when level and arrival disagree or say nothing.
EarDecision assignEars(MeasuredSet& set);

} // namespace orvane::kestrum::tools
