// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace orvane {

inline constexpr std::uint32_t decayTableRows = 100;
inline constexpr std::uint32_t decayTableColumns = 100;

/// Gain that shortens a reverb response at one place of it.
///
/// Every row starts at 1.0 and falls; row 0 falls fastest, row 99 slowest. All gains lie between 0.0464033
/// and 1.0.
///
/// @param row    decay setting, 0 to 99. Nothing guards it: the caller must not go beyond.
/// @param column place in the response in hundredths of its length, 0 to 99, unguarded as well.
/// Units   linear gain.
/// Thread  any, wait-free.
/// Source  made by "kestrum data decay-table": a smooth family of curves through a few chosen rows.
float decayGain(std::uint32_t row, std::uint32_t column) noexcept ORVANE_REALTIME;

/// Row of the table that a room's decay asks for.
///
/// @param percent decay setting; 50 is the shortest, and from 100 on a response is left as it is.
/// @return none where the response is left as it is.
/// Thread  any, wait-free.
std::optional<std::uint32_t> decayRow(float percent) noexcept ORVANE_REALTIME;

/// The whole table.
///
/// Shape   [decayTableRows][decayTableColumns], row after row.
std::span<const float, std::size_t{decayTableRows} * decayTableColumns> decayTable() noexcept ORVANE_REALTIME;

} // namespace orvane
