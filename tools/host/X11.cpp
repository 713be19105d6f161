// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/X11.h"

#include "host/HostError.h"

#include <X11/Xutil.h>

#include <cstdlib>
#include <string>

namespace orvane::kestrum::host {

namespace {

struct ImageFreer {
    void operator()(XImage* image) const { XDestroyImage(image); }
};

std::uint8_t component(unsigned long value, unsigned shift) {
    return static_cast<std::uint8_t>((value >> shift) & 0xff);
}

/// A view may ask a display without window manager for things that only one of those knows. Toolkits pass such errors
/// over; the library's own way is to end the process.
int passOver(Display*, XErrorEvent*) { return 0; }

} // namespace

DisplayPointer openDisplay() {
    XSetErrorHandler(passOver);
    DisplayPointer display(XOpenDisplay(nullptr));
    if (!display) {
        const char* const name = std::getenv("DISPLAY");
        throw HostError(name == nullptr || *name == 0
                            ? "There is no X display: the variable DISPLAY is not set."
                            : "The X display \"" + std::string(name) + "\" cannot be opened.");
    }
    return display;
}

Image grab(Display& display, Window window, int x, int y, int width, int height) {
    XWindowAttributes attributes;
    if (XGetWindowAttributes(&display, window, &attributes) == 0 || x < 0 || y < 0 || width <= 0 ||
        height <= 0 || x + width > attributes.width || y + height > attributes.height)
        throw HostError("The part to be shown does not lie inside the window.");
    const std::unique_ptr<XImage, ImageFreer> taken(
        XGetImage(&display, window, x, y, static_cast<unsigned>(width), static_cast<unsigned>(height),
                  AllPlanes, ZPixmap));
    if (!taken || taken->red_mask != 0xff0000 || taken->green_mask != 0xff00 || taken->blue_mask != 0xff)
        throw HostError("The display's colours cannot be read: it has to have 24 bits.");
    Image image(width, height);
    for (int row = 0; row < height; ++row)
        for (int column = 0; column < width; ++column) {
            const unsigned long value = XGetPixel(taken.get(), column, row);
            std::uint8_t* const pixel = image.pixel(column, row);
            pixel[0] = component(value, 16);
            pixel[1] = component(value, 8);
            pixel[2] = component(value, 0);
        }
    return image;
}

} // namespace orvane::kestrum::host
