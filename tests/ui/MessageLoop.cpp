// SPDX-License-Identifier: GPL-3.0-or-later
#include "MessageLoop.h"

namespace test {

bool MessageLoop::runUntil(const std::function<bool()>& reached) {
    const auto end = juce::Time::getMillisecondCounter() + 20000;
    while (!reached()) {
        if (juce::Time::getMillisecondCounter() > end)
            return false;
        juce::MessageManager::getInstance()->runDispatchLoopUntil(5);
    }
    return true;
}

void MessageLoop::runATick() {
    /// As slow as the slowest timer of the editor; comes after the ticks that were due before it.
    struct Tick final : juce::Timer {
        Tick() { startTimer(40); }
        void timerCallback() override { ++count; }
        int count = 0;
    } tick;
    runUntil([&] { return tick.count >= 2; });
}

} // namespace test
