// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane::kestrum {

/// Tells when the processor's error flag changes, a tick later at most. A new one takes the flag for lowered, so
/// one that is already up is told at the first tick.
///
/// Thread  message thread, listeners included.
class IWatchDog {
public:
    class Listener {
    public:
        virtual ~Listener() = default;

        /// @param error whether the output is muted after a failed preparation.
        virtual void errorStateChanged(bool error) = 0;
    };

    virtual ~IWatchDog() = default;

    /// @param listener borrowed until it is removed; a second adding changes nothing.
    virtual void addListener(Listener* listener) = 0;
    virtual void removeListener(Listener* listener) = 0;
};

} // namespace orvane::kestrum
