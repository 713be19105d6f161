// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/rooms/EarCovariance.h"

#include <algorithm>
#include <cmath>

namespace orvane::kestrum::tools {

namespace {

EarMix root(const Covariance& of) {
    const double determinant = std::sqrt(std::max(of.left * of.right - of.cross * of.cross, 0.0));
    const double trace = std::sqrt(of.left + of.right + 2 * determinant);
    return {(of.left + determinant) / trace, (of.right + determinant) / trace, of.cross / trace};
}

EarMix inverse(const EarMix& of) {
    const double determinant = of.left * of.right - of.cross * of.cross;
    return {of.right / determinant, of.left / determinant, -of.cross / determinant};
}

} // namespace

Covariance mixed(const EarMix& mix, const Covariance& of) { // the product mix * of * mix
    const double a = mix.left * of.left + mix.cross * of.cross;
    const double b = mix.left * of.cross + mix.cross * of.right;
    const double c = mix.cross * of.left + mix.right * of.cross;
    const double d = mix.cross * of.cross + mix.right * of.right;
    return {a * mix.left + b * mix.cross, c * mix.cross + d * mix.right, a * mix.cross + b * mix.right};
}

EarMix mixBetween(const Covariance& made, const Covariance& meant) {
    const EarMix meantRoot = root(meant);
    const EarMix between = inverse(root(mixed(meantRoot, made)));
    const Covariance result = mixed(meantRoot, {between.left, between.right, between.cross});
    return {result.left, result.right, result.cross};
}

} // namespace orvane::kestrum::tools
