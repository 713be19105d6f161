// SPDX-License-Identifier: GPL-3.0-or-later
// soak [HOURS [SEED]]: plays HOURS of audio (24) through the built module with random actions, and says what it found.
#include "Child.h"
#include "Soak.h"
#include "support/PrivateMounts.h"

#include <cstdlib>
#include <iostream>

int main(int count, char** words) {
    rawhost::SoakPlan plan;
    plan.talks = true;
    char* end = nullptr;
    if (count > 1)
        plan.hours = std::strtod(words[1], &end);
    if (count > 2)
        plan.seed = static_cast<std::uint32_t>(std::strtoul(words[2], nullptr, 10));
    if (count > 3 || (end != nullptr && *end != '\0') || !(plan.hours > 0)) {
        std::cerr << "usage: soak [HOURS [SEED]], with HOURS of audio above 0 (24 when left out)\n";
        return 2;
    }
    setenv("DISPLAY", "none", 1); // a screen that ends while hours of audio play would end the soak, too
    const std::string findings = rawhost::inChild(
        [&] {
            // The segment's name belongs to the whole machine: neither meet nor disturb others.
            test::enterPrivateMounts();
            test::coverFolder("/dev/shm", "mode=1777");
            const rawhost::SoakResult result = rawhost::soak(plan);
            std::cout << "figure: " << result.hours << " h of audio, " << result.soundingHours
                      << " h of them not silent, " << result.actions << " actions, heap slope "
                      << result.heapBytesPerHour << " bytes per hour, seed " << plan.seed << std::endl;
            return result.findings;
        },
        std::chrono::hours(48));
    std::cout << (findings.empty() ? "no fault found" : "FAULT: " + findings) << std::endl;
    return findings.empty() ? 0 : 1;
}
