// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/rooms/DecaySearch.h"

#include <cmath>
#include <limits>

namespace orvane::kestrum::tools {

namespace {

/// The amplitude's rate of a decay by 60 dB in one second.
const double rateOfOneSecond = std::log(1000.0);

EnergyCourse decayed(const EnergyCourse& course, double rate) {
    EnergyCourse result = course;
    for (std::size_t step = 0; step < result.energies.size(); ++step)
        result.energies[step] *= std::exp(-2 * rate * course.stepSeconds * static_cast<double>(step));
    return result;
}

} // namespace

double reverberationTime(const EnergyCourse& course) {
    constexpr double fromDb = -5;
    constexpr double toDb = -35;
    Samples remaining = course.energies;
    for (std::size_t step = remaining.size(); step-- > 1;)
        remaining[step - 1] += remaining[step];
    double count = 0, sumTime = 0, sumLevel = 0, sumTimeTime = 0, sumTimeLevel = 0;
    for (std::size_t step = 0; step < remaining.size() && remaining[step] > 0; ++step) {
        const double level = 10 * std::log10(remaining[step] / remaining[0]);
        if (level < toDb)
            break;
        if (level > fromDb)
            continue;
        const double time = course.stepSeconds * static_cast<double>(step);
        count += 1;
        sumTime += time;
        sumLevel += level;
        sumTimeTime += time * time;
        sumTimeLevel += time * level;
    }
    const double slope =
        (count * sumTimeLevel - sumTime * sumLevel) / (count * sumTimeTime - sumTime * sumTime);
    return -60 / slope;
}

double decayRateFor(const EnergyCourse& course, double t60Seconds) {
    constexpr int rounds = 40;
    constexpr double closeEnough = 1e-4;
    constexpr double damping =
        0.6; // where the fitted range ends in an uneven place, full steps would swing to and fro
    double rate = rateOfOneSecond / t60Seconds;
    double best = rate;
    double smallestError = std::numeric_limits<double>::infinity();
    for (int round = 0; round < rounds && smallestError > closeEnough; ++round) {
        const double made = reverberationTime(decayed(course, rate));
        const double error = std::abs(made / t60Seconds - 1);
        if (error < smallestError) {
            smallestError = error;
            best = rate;
        }
        // Rates add up, so what is missing is about what has to be added.
        rate += damping * rateOfOneSecond * (1 / t60Seconds - 1 / made);
    }
    return best;
}

} // namespace orvane::kestrum::tools
