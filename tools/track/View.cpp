// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/View.h"

#include <array>
#include <chrono>
#include <cstdio>

namespace orvane::kestrum::track {

void View::advance(Instant now) {
    if (now - rateStart < std::chrono::seconds(1))
        return;
    rate = static_cast<double>(samples) / secondsOf(now - rateStart);
    rateStart = now;
    samples = 0;
}

std::string View::line(const std::optional<Source>& source, const std::optional<HeadAngles>& angles,
                       Clock::duration age) const {
    const std::string refused = unusable > 0 ? "  " + std::to_string(unusable) + " unusable" : "";
    if (!source)
        return "waiting for a sender" + refused;
    std::array<char, 128> text{};
    if (!angles)
        std::snprintf(text.data(), text.size(), "  silent for %.0f s, the dial is free", secondsOf(age));
    else
        std::snprintf(text.data(), text.size(), "  %3.0f/s  yaw %+6.1f  pitch %+5.1f  roll %+5.1f  %4.0f ms",
                      rate, angles->yaw, angles->pitch, angles->roll, 1000 * secondsOf(age));
    return source->describe() + text.data() + refused;
}

} // namespace orvane::kestrum::track
