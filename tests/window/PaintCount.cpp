// SPDX-License-Identifier: GPL-3.0-or-later
#include "PaintCount.h"

#include "host/X11.h"

#include <X11/extensions/Xdamage.h>

#include <stdexcept>

namespace orvane::kestrum::host::test {

struct PaintCount::Watch {
    Watch() {
        int firstError = 0;
        if (XDamageQueryExtension(display.get(), &firstEvent, &firstError) == 0)
            throw std::runtime_error("The X server does not report what is drawn.");
        // the root window stands for all windows in it
        XDamageCreate(display.get(), DefaultRootWindow(display.get()), XDamageReportRawRectangles);
        XSync(display.get(), False);
    }

    DisplayPointer display = openDisplay();
    int firstEvent = 0;
};

PaintCount::PaintCount() : watch(std::make_unique<Watch>()) {
    sinceLastCall(); // a new watch begins with a report of all that there is
}
PaintCount::~PaintCount() = default;

int PaintCount::sinceLastCall() {
    Display& display = *watch->display;
    XSync(&display, False);
    int count = 0;
    while (XPending(&display) > 0) {
        XEvent event;
        XNextEvent(&display, &event);
        if (event.type == watch->firstEvent + XDamageNotify)
            ++count;
    }
    return count;
}

} // namespace orvane::kestrum::host::test
