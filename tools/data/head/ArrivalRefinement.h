// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/AlignedSet.h"

#include <cstddef>
#include <span>
#include <utility>
#include <vector>

namespace orvane::kestrum::tools {

/// A measured difference between two unknowns: value[second] - value[first] should be `difference`.
struct DifferenceEquation {
    std::size_t first = 0;
    std::size_t second = 0;
    double difference = 0;
    double weight = 1;
};

/// The values that meet the differences best in the least-squares sense, near `start` where the differences
/// leave freedom: parts that no equation joins keep the mean of their start.
///
/// Source  normal equations by conjugate gradients.
std::vector<double> solveDifferences(std::span<const DifferenceEquation> equations,
                                     std::vector<double> start);

/// Moves the arrivals so that neighbouring responses agree in time: every pair of neighbours is correlated
/// (whitened by the set's mean power, 300 Hz to 8 kHz), and the arrivals are fitted to the lags of all pairs
/// at once. Each response by itself has an edge that jumps where two paths round the head, or the folds of
/// the ear, are equally strong; the fit does not.
void refineArrivals(AlignedSet& set);

} // namespace orvane::kestrum::tools
