// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_graphics/juce_graphics.h>

namespace orvane {

/// A compiled-in PNG, decoded at its first use and kept for the life of the process. All pictures are twice as wide
/// and high as they are shown.
///
/// Shape   `data` [size], compiled in: the address is what a picture is remembered by.
/// Thread  message thread.
/// Errors  data that is no PNG gives a null image, which draws nothing.
juce::Image picture(const char* data, int size);

} // namespace orvane
