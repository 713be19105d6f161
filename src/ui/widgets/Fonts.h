// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_graphics/juce_graphics.h>

/// The compiled-in typefaces, each made at its first use and kept for the life of the process.
///
/// Thread  message thread.
namespace orvane::fonts {

juce::Typeface::Ptr latoMedium();
juce::Typeface::Ptr latoRegular();
juce::Typeface::Ptr heeboRegular(); ///< Combo boxes, menus and text boxes.

} // namespace orvane::fonts
