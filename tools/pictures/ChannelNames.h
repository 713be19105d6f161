// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/core/LayoutTable.h"

#include <string>
#include <vector>

namespace orvane::kestrum::pictures {

/// Short names of a layout's channels, in bus order, told from where the loudspeakers stand: "L", "Rs", "Ltf", "LFE".
/// In a layout with one pair beside or behind the listener this is "Ls" and "Rs", with two they are "Lss" and "Lrs".
std::vector<std::string> channelNames(const core::LayoutRow& layout);

} // namespace orvane::kestrum::pictures
