// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/OutputFormat.h"

#include <algorithm>
#include <stdexcept>

namespace orvane {

namespace {

struct FormatRow {
    std::int32_t format;
    std::uint64_t channels;
};

constexpr FormatRow table[]{
    {2, 2},   {4, 4},   {5, 9},  {6, 16},  {7, 4},   {8, 9},   {9, 16},  {11, 2},  {21, 4},
    {22, 4},  {23, 4},  {24, 5}, {25, 5},  {26, 6},  {27, 6},  {28, 6},  {29, 7},  {30, 7},
    {31, 8},  {32, 8},  {33, 7}, {34, 9},  {35, 8},  {36, 10}, {37, 9},  {38, 11}, {39, 10},
    {40, 12}, {41, 12}, {42, 8}, {43, 10}, {44, 10}, {45, 12}, {46, 14}, {47, 24},
};

constexpr std::int32_t withLowFrequency[]{26, 27, 29, 31, 32, 35, 36, 39, 40, 41, 43, 45, 46, 47};

static_assert(std::ranges::is_sorted(table, {}, &FormatRow::format));
static_assert(std::ranges::all_of(withLowFrequency, [](std::int32_t format) {
    return std::ranges::count(table, format, &FormatRow::format) == 1;
}));

} // namespace

OutputFormat OutputFormat::of(Format format) {
    const auto* const row = std::ranges::find(table, static_cast<std::int32_t>(format), &FormatRow::format);
    if (row == std::ranges::end(table))
        throw std::invalid_argument("output format not supported");
    return {row->channels, format};
}

OutputFormat OutputFormat::fromFraction(float fraction) {
    const float scaled = fraction * 100.0f;
    // The cast of what no format number can be is undefined; the comparison is also false for a NaN.
    if (!(scaled >= 0.0f && scaled < 100.0f))
        throw std::invalid_argument("output format not supported");
    return of(Format{static_cast<std::int32_t>(scaled)});
}

bool OutputFormat::hasLowFrequencyChannel() const noexcept {
    return std::ranges::find(withLowFrequency, static_cast<std::int32_t>(number)) !=
           std::ranges::end(withLowFrequency);
}

float OutputFormat::fraction() const noexcept {
    return (static_cast<float>(static_cast<std::int32_t>(number)) + 0.4f) / 100.0f;
}

} // namespace orvane
