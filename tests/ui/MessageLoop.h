// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <functional>
#include <thread>

namespace test {

/// Makes the constructing thread the message thread, and lets messages and timers through when the test says so.
class MessageLoop {
public:
    /// @return whether `reached` has become true before the time was up, which is far longer than any tick.
    bool runUntil(const std::function<bool()>& reached);

    /// Lets everything through that is due, at least one tick of every timer that runs.
    void runATick();

private:
    juce::ScopedJuceInitialiser_GUI framework;
};

/// What a host's thread does, from its start to its end.
template <typename Call>
void onAnotherThread(Call&& call) {
    std::thread thread(std::forward<Call>(call));
    thread.join();
}

} // namespace test
