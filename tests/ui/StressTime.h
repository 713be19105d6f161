// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdlib>

namespace test {

/// How long each stress test runs: two seconds, or as many as the variable KESTRUM_STRESS_SECONDS says.
inline std::chrono::seconds stressTime() {
    const char* const seconds = std::getenv("KESTRUM_STRESS_SECONDS");
    return std::chrono::seconds(seconds != nullptr ? std::atoi(seconds) : 2);
}

} // namespace test
