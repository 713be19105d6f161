// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace zmtl {

/// Marks the calling thread as one that is calling listeners, for as long as it lives. Marks nest.
///
/// Whoever takes a listener out has to know whether it does so from inside a callback, whatever list that callback
/// belongs to: two threads that waited for each other's callbacks would wait for ever. The marks of all lists of the
/// process therefore stand in one table. It is no thread-local variable, which in a loaded module may allocate when a
/// thread first uses it.
///
/// Thread  any; destroyed on the thread that made it. Wait-free, unless more than `capacity` threads are inside
///         callbacks at once: then the next one waits for a place.
class NotifyingThread {
public:
    static constexpr int capacity = 64;

    NotifyingThread() noexcept;
    ~NotifyingThread();
    NotifyingThread(const NotifyingThread&) = delete;
    NotifyingThread& operator=(const NotifyingThread&) = delete;

    /// Whether the calling thread is inside a callback of any list.
    static bool isCurrent() noexcept;

private:
    int place;
};

} // namespace zmtl
