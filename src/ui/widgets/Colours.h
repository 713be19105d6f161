// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_graphics/juce_graphics.h>

/// The colours that widgets, menus and text share; the pictures are drawn round them.
namespace orvane::colours {

inline const juce::Colour teal{81, 232, 216};        ///< Menus and combo boxes.
inline const juce::Colour value{0xff50e8d8};         ///< Numbers in text boxes.
inline const juce::Colour menu{0, 87, 91};           ///< Behind menus.
inline const juce::Colour highlight{0xbfa4c2ce};     ///< Behind the entry under the mouse.
inline const juce::Colour valueSelected{0xff10282b}; ///< Numbers that are selected, on `value`.

} // namespace orvane::colours
