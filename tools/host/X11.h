// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/Image.h"

#include <X11/Xlib.h>

#include <memory>

// The little that is shared between those who show windows and those who look at them.

namespace orvane::kestrum::host {

struct DisplayCloser {
    void operator()(Display* display) const { XCloseDisplay(display); }
};
/// A connection to the display of the variable DISPLAY. One thread at a time.
using DisplayPointer = std::unique_ptr<Display, DisplayCloser>;

/// Errors of requests, a plug-in's as well as one's own, no longer end the process.
/// @throws HostError when there is none.
DisplayPointer openDisplay();

/// Part of what a window, or the whole screen by its root window, shows.
/// @throws HostError when that part does not lie inside the window, or when its pixels are no plain 24-bit colours.
Image grab(Display& display, Window window, int x, int y, int width, int height);

} // namespace orvane::kestrum::host
