// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/Demo.h"

#include <cmath>
#include <numbers>

namespace orvane::kestrum::track {

HeadAngles demoAngles(double seconds) {
    const auto swing = [seconds](double degrees, double period) {
        return degrees * std::sin(2 * std::numbers::pi * seconds / period);
    };
    return {swing(60, 12), swing(10, 7), swing(5, 17)};
}

} // namespace orvane::kestrum::track
