// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Timer.h"

namespace orvane::kestrum {

void Timer::timerCallback() {
    for (auto* const listener : listeners)
        listener->timerCallback();
}

} // namespace orvane::kestrum
