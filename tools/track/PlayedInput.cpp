// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/PlayedInput.h"

#include "track/Demo.h"

#include <algorithm>
#include <chrono>

namespace orvane::kestrum::track {

namespace {

constexpr std::chrono::milliseconds demoInterval{16};

} // namespace

std::vector<Sample> PlayedInput::samples(Instant now) {
    std::vector<Sample> result;
    if (demo && now >= nextDemo) {
        nextDemo = now + demoInterval;
        result.push_back({{.input = Input::demo}, rotationOf(demoAngles(secondsOf(now - start)))});
    }
    const std::size_t before = played;
    while (played < movement.size() && start + durationOf(movement[played].seconds) <= now)
        ++played;
    if (played > before)
        result.push_back({{.input = Input::replay}, rotationOf(movement[played - 1].angles)});
    return result;
}

std::optional<Instant> PlayedInput::due() const {
    std::optional<Instant> next;
    if (demo)
        next = nextDemo;
    if (played < movement.size()) {
        const Instant line = start + durationOf(movement[played].seconds);
        next = next ? std::min(*next, line) : line;
    }
    return next;
}

} // namespace orvane::kestrum::track
