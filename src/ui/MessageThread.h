// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_events/juce_events.h>

#include <atomic>
#include <functional>
#include <thread>

namespace orvane::kestrum {

/// Tells a view whether it may touch its widget, and gives it time on the message thread to apply what other threads
/// have left.
///
///     host's thread ── presenter ── view ── isCurrent()? no ──► latest value in an atomic
///     message thread ─ tick ─────── view ◄───────────────────── taken and applied to the widget
///
/// Which thread that is may change: where a host has an event loop of its own, it takes the messages over when it
/// shows an editor.
///
/// Thread  made and destroyed where widgets may be; isCurrent() on any, wait-free unless the answer is yes.
class MessageThread final : private juce::Timer {
public:
    static constexpr int ticksPerSecond = 30;

    /// @param applyPending called at every tick.
    explicit MessageThread(std::function<void()> applyPending);

    /// The framework's own answer takes a lock, so it is asked only by the thread that ticked last. One that has just
    /// become the message thread gets a no, which is safe.
    bool isCurrent() const noexcept;

private:
    void timerCallback() override;

    std::function<void()> applyPending;
    std::atomic<std::thread::id> lastSeen; ///< The message thread at the last tick; none before.
};

} // namespace orvane::kestrum
