// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "pictures/Font.h"
#include "pictures/Picture.h"

#include "parameters/core/LayoutTable.h"

namespace orvane::kestrum::pictures {

inline constexpr int diagramWidth = 2160;
inline constexpr int diagramHeight = 1008;

struct DiagramFonts {
    const Font& medium;
    const Font& regular;
};

/// The loudspeakers of a layout round the listener, for a transparent overlay.
Picture diagram(const core::LayoutRow& layout, const DiagramFonts& fonts);

} // namespace orvane::kestrum::pictures
