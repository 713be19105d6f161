// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/MessageThread.h"

#include <utility>

namespace orvane::kestrum {

MessageThread::MessageThread(std::function<void()> givenApplyPending)
    : applyPending(std::move(givenApplyPending)) {
    if (juce::MessageManager::existsAndIsCurrentThread())
        lastSeen = std::this_thread::get_id();
    startTimerHz(ticksPerSecond);
}

bool MessageThread::isCurrent() const noexcept {
    return lastSeen.load() == std::this_thread::get_id() && juce::MessageManager::existsAndIsCurrentThread();
}

void MessageThread::timerCallback() {
    lastSeen = std::this_thread::get_id();
    applyPending();
}

} // namespace orvane::kestrum
