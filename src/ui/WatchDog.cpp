// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/WatchDog.h"

namespace orvane::kestrum {

void WatchDog::timerCallback() {
    const bool now = processor->hasError();
    if (now == state)
        return;
    listeners.notify([now](IWatchDog::Listener& listener) { listener.errorStateChanged(now); });
    state = now;
}

} // namespace orvane::kestrum
