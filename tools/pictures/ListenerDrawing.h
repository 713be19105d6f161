// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "pictures/Picture.h"

namespace orvane::kestrum::pictures {

/// Head and shoulders of the listener, wearing headphones, seen from behind.
void drawListener(Canvas& canvas);

} // namespace orvane::kestrum::pictures
