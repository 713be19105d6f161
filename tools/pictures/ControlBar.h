// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "pictures/Font.h"
#include "pictures/Picture.h"

namespace orvane::kestrum::pictures {

/// What lies under the controls at the bottom of the window: panel, labels, boxes, grooves, wells and arrows, each at
/// the bounds that the editor gives its widget.
void drawControlBar(Canvas& canvas, const Font& font);

} // namespace orvane::kestrum::pictures
