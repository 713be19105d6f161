// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane::kestrum::tools {

/// Powers of both ears and what they have in common.
struct Covariance {
    double left = 0;
    double right = 0;
    double cross = 0;
};

/// A symmetric mix of two ears.
struct EarMix {
    double left = 1;
    double right = 1;
    double cross = 0;
};

/// The mix that gives signals of one covariance another and changes them as little as can be.
/// @param made both ears sound, and not all the same.
/// Source  I. Olkin and F. Pukelsheim, "The distance between two random vectors with given dispersion matrices",
///         Linear Algebra and its Applications 48, 1982.
EarMix mixBetween(const Covariance& made, const Covariance& meant);

/// What signals of a covariance have after a mix.
Covariance mixed(const EarMix& mix, const Covariance& of);

} // namespace orvane::kestrum::tools
