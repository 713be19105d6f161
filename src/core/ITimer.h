// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane::kestrum::core {

/// A tick, 30 times a second as long as it lives.
///
/// Thread  message thread, listeners included.
class ITimer {
public:
    class Listener {
    public:
        virtual ~Listener() = default;

        virtual void timerCallback() = 0;
    };

    virtual ~ITimer() = default;

    /// @param listener borrowed until it is removed; a second adding changes nothing.
    virtual void addListener(Listener* listener) = 0;
    virtual void removeListener(Listener* listener) = 0;
};

} // namespace orvane::kestrum::core
