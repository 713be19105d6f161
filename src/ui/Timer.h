// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/ITimer.h"
#include "parameters/zmtl/Listeners.h"

#include <juce_events/juce_events.h>

namespace orvane::kestrum {

/// The framework's timer at 30 ticks a second, as presenters see it. No tick comes while the message thread is busy.
///
/// Thread  message thread.
class Timer final : public core::ITimer, private juce::Timer {
public:
    Timer() { startTimerHz(30); }
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    void addListener(core::ITimer::Listener* listener) override { listeners.add(listener); }
    void removeListener(core::ITimer::Listener* listener) override { listeners.remove(listener); }

private:
    void timerCallback() override;

    zmtl::ListenerSet<core::ITimer::Listener> listeners;
};

} // namespace orvane::kestrum
