// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>

namespace zmtl {

/// A nap that somebody else can end.
///
/// Thread  sleepFor() on the thread that may wait, wake() from any other thread that may take a mutex.
class ISleep {
public:
    virtual ~ISleep() = default;

    /// Waits until the time is over or wake() is called, whichever comes first. May end early for no reason,
    /// so the caller loops over a condition of its own.
    virtual void sleepFor(std::chrono::milliseconds time) = 0;

    /// Ends every sleep that is under way. One that begins later is not affected.
    virtual void wake() = 0;
};

} // namespace zmtl
