// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Timer.h"

namespace orvane::kestrum {

void Timer::timerCallback() {
    listeners.notify([](core::ITimer::Listener& listener) { listener.timerCallback(); });
}

} // namespace orvane::kestrum
