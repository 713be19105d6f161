// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ISupportedLayouts.h"

namespace orvane::kestrum::core {

/// Decibels that bring a layout's mix to the level of the others: the more loudspeakers add up, the less.
///
/// Source  chosen by ear.
float gainCompensationDb(const ISupportedLayouts::Properties& layout) noexcept;

} // namespace orvane::kestrum::core
