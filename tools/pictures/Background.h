// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "pictures/Font.h"
#include "pictures/Picture.h"
#include "pictures/RoomRenderer.h"

namespace orvane::kestrum::pictures {

inline constexpr int backgroundWidth = 2160;
inline constexpr int backgroundHeight = 1272;

/// How the room lies behind the controls, which are always sharp.
enum class Focus { sharp, blurred };

/// The room with the glow round its lights, darker towards the corners and behind the loudspeakers' diagram.
Picture roomPicture(const RoomQuality& quality);

/// The whole window without its widgets: the room, and over it the bar of controls with its labels, wells and symbols,
/// and the product's name.
Picture background(Picture room, Focus focus, const Font& medium, const Font& regular);

} // namespace orvane::kestrum::pictures
