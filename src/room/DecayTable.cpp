// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/DecayTable.h"

#include <algorithm>
#include <array>
#include <cassert>

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

std::span<const float, std::size_t{decayTableRows} * decayTableColumns> decayTable() noexcept {
    return gains;
}

} // namespace orvane
