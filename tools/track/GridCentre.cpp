// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/GridCentre.h"

#include <algorithm>
#include <cmath>

namespace orvane::kestrum::track {

namespace {

constexpr int gridDegrees = 5;
constexpr int stepsPerDegree = 100;

} // namespace

double heardAzimuth(double azimuth) {
    const int asked = static_cast<int>(-azimuth);
    const int column = std::clamp(asked + 180, 0, 360) / gridDegrees;
    return 180 - column * gridDegrees;
}

double gridCentreDegrees() {
    double sum = 0;
    for (int step = 0; step < 360 * stepsPerDegree; ++step) {
        const double azimuth = (step + 0.5) / stepsPerDegree - 180;
        sum += std::remainder(heardAzimuth(azimuth) - azimuth, 360);
    }
    return sum / (360 * stepsPerDegree);
}

} // namespace orvane::kestrum::track
