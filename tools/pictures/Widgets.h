// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "pictures/Font.h"
#include "pictures/Outlines.h"
#include "pictures/Picture.h"

namespace orvane::kestrum::pictures {

/// Side of the square in which dials are designed, in points; larger and smaller ones are scaled.
inline constexpr double dialSide = 72;

/// Radius of a dial's lit ring, and of the groove that a background holds for it.
inline constexpr double dialRingRadius = 30.5;

/// The knob with its mark at the top. Deliberate: alike all round but for the mark, since the widget turns all of it
/// and a light that turned along would look painted on.
Picture dialPointer(int side);

/// The lit ring in full; the widget erases what the value leaves out.
/// @param from, to degrees, 0 up, clockwise. Nothing is drawn outside of them: the widgets never erase the sector
///        before a dial's start, at the bottom left.
Picture dialRing(int side, double from, double to);

/// The lit line of a slider in full. Sizes in pixels, the picture is shown at half of them.
/// @param thumbSide pixels of the thumb's picture; the line ends where the thumb's middle can go.
Picture sliderTrack(int width, int height, int thumbSide);

Picture sliderThumb(int side);

/// Symbol in a box of choices, pointing down.
Picture comboArrow(int width, int height);

/// The arrow that a button shows while pressed: the background's arrow, lit. @param toTheRight else to the left.
Picture pressedArrow(bool toTheRight);

/// The outline of that arrow in a square of 24 points whose upper left corner is (x, y).
Path arrowSymbol(double x, double y, bool toTheRight);

Picture toolbarLogo(const Font& font, bool pressed);
Picture toolbarHelp(const Font& font, bool pressed);

} // namespace orvane::kestrum::pictures
