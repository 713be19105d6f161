// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/WatchDog.h"

namespace orvane::kestrum {

void WatchDog::timerCallback() {
    const bool now = processor->hasError();
    if (now == state)
        return;
    for (auto* const listener : listeners)
        listener->errorStateChanged(now);
    state = now;
}

} // namespace orvane::kestrum
