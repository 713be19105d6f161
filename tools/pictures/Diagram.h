// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "pictures/Font.h"
#include "pictures/Picture.h"

#include "parameters/core/LayoutTable.h"

namespace orvane::kestrum::pictures {

inline constexpr int diagramWidth = 2160;
inline constexpr int diagramHeight = 1008;

/// The loudspeakers of a layout round the listener, for a transparent overlay: teal at ear level, pale blue above,
/// amber for the low-frequency channel, each with its bus channel and name.
Picture diagram(const core::LayoutRow& layout, const Font& font);

} // namespace orvane::kestrum::pictures
