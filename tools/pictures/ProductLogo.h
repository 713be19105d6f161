// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "pictures/Font.h"
#include "pictures/Picture.h"

namespace orvane::kestrum::pictures {

/// "Orvane KESTRUM" at the upper right of the window, where the editor's tooltip button lies.
void drawProductLogo(Canvas& canvas, const Font& medium, const Font& regular);

} // namespace orvane::kestrum::pictures
