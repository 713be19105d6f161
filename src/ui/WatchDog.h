// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/zmtl/Listeners.h"
#include "ui/IProcessor.h"
#include "ui/IWatchDog.h"

#include <juce_events/juce_events.h>

namespace orvane::kestrum {

/// Looks at the processor's error flag 30 times a second. A flag that was up between two ticks only is not seen.
///
/// Thread  message thread; the flag itself is atomic.
class WatchDog final : public IWatchDog, private juce::Timer {
public:
    /// @param processor borrowed, outlives the watchdog.
    explicit WatchDog(IProcessor& processor) : processor(&processor) { startTimerHz(30); }
    WatchDog(const WatchDog&) = delete;
    WatchDog& operator=(const WatchDog&) = delete;

    void addListener(IWatchDog::Listener* listener) override { listeners.add(listener); }
    void removeListener(IWatchDog::Listener* listener) override { listeners.remove(listener); }

private:
    void timerCallback() override;

    IProcessor* processor;
    bool state = false; ///< The flag at the last tick.
    zmtl::ListenerSet<IWatchDog::Listener> listeners;
};

} // namespace orvane::kestrum
