// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Play.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace rawhost {

/// How long a soak lasts and what it does.
struct SoakPlan {
    double hours = 24;      ///< Of audio rendered by active instances, all together.
    std::uint32_t seed = 1; ///< The same seed, the same actions.
    bool talks = false;     ///< Prints a line for every hour of audio.
    /// In a soak as long as this, a fifth of the audio has to sound; in a shorter one, chance decides.
    double leastHoursForAShare = 0.05;
    // Faults that have to be seen.
    std::function<void(int rest)> fault;             ///< Runs at every rest with the number of it.
    std::function<void(Channels& sound)> guestFault; ///< Runs on all that the instances play.
    std::function<void(Channels& sound)> freshFault; ///< Runs on what a fresh instance plays at first.
};

/// What a soak has come to.
struct SoakResult {
    std::string findings;     ///< Nothing when all was well.
    double hours = 0;         ///< Of audio rendered by active instances.
    double soundingHours = 0; ///< Of these, those in which something was to be heard.
    std::size_t actions = 0;
    double heapBytesPerHour = 0; ///< The slope of what is in use at the rests.
};

/// Plays with some instances of the module as no host ever would: seeded random actions of every kind that a host has, on
/// sound and on what is no sound, hour after hour. Now and then it rests: all instances go, what is left of heap, threads
/// and descriptors is noted, and a fresh instance has to sound as one did at first.
///
/// Faults  a crash (run it in a child), output that is no number, sound while not prepared, another sound after a rest,
///         anything left but heap, heap that grows, and silence for most of the time.
SoakResult soak(const SoakPlan& plan);

} // namespace rawhost
