// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/DecayTable.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>

namespace orvane {

namespace {

constexpr std::array<float, std::size_t{decayTableRows} * decayTableColumns> gains{
#include "room/DecayTableValues.inc"
};

constexpr float smallestGain = 0.0464033F;
static_assert(std::ranges::all_of(gains, [](float gain) { return gain >= smallestGain && gain <= 1; }));

} // namespace

float decayGain(std::uint32_t row, std::uint32_t column) noexcept {
    assert(row < decayTableRows && column < decayTableColumns);
    return gains[std::size_t{row} * decayTableColumns + column];
}

std::optional<std::uint32_t> decayRow(float percent) noexcept {
    const float x = (percent - 50.0f) / 50.0f;
    if (!(x < 1.0f))
        return std::nullopt;
    return static_cast<std::uint32_t>(
        std::clamp(std::trunc(x * 100.0f), 0.0f, static_cast<float>(decayTableRows - 1)));
}

std::span<const float, std::size_t{decayTableRows} * decayTableColumns> decayTable() noexcept {
    return gains;
}

} // namespace orvane
