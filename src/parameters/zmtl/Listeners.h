// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/zmtl/NotifyingThread.h"

#include <algorithm>
#include <atomic>
#include <cassert>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <mutex>
#include <new>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace zmtl {

/// In which order listeners are called.
enum class ListenerOrder {
    registration, ///< A list: a listener that is added twice is called twice.
    address,      ///< A set: a second adding changes nothing.
};

/// Borrowed listeners that may be called on any thread while they come and go on others.
///
///     notify()  count the visit ─► load the snapshot, take its next entry ─► count the call
///               ─► unless the entry is marked as removed: call ─► uncount both
///     add()     copy the snapshot with the new entry ─► publish ─► free what no visit can see any more
///     remove()  mark the entries ─► publish a snapshot without them ─► wait until none of them is being called
///
/// All these steps are sequentially consistent: either a call finds the mark, or whoever removes finds the call. A
/// snapshot that is out of use, and its entries, are freed by a later change that finds nobody notifying.
///
/// After remove() from outside a callback the listener is not being called and will not be: it may die. Inside a callback,
/// of this list or another, remove() does not wait: no call begins any more, but one that another thread has begun may
/// still run, so the listener has to live on until it is removed again, or the list has died, outside. Like any list that is
/// walked while it changes, notify() also reaches what is added behind the place where it stands.
///
/// Thread  notify() on any thread, also inside a callback: no lock, no allocation, no wait but that of
///         NotifyingThread. add() and remove() on any thread that may take a mutex; remove() outside of callbacks waits for
///         a call of that listener which is under way. Constructed and destroyed while nobody else is near.
/// Errors  add() throws std::bad_alloc and std::length_error; nothing has changed then. remove() never fails.
template <typename Listener, ListenerOrder order>
class Listeners {
public:
    Listeners() noexcept = default;
    ~Listeners() { assert(visits == 0 && "destroyed by one of its own callbacks"); }
    Listeners(const Listeners&) = delete;
    Listeners& operator=(const Listeners&) = delete;

    /// @param listener borrowed until it is removed.
    void add(Listener* listener) {
        const std::lock_guard lock(changing);
        auto changed = listedEntries();
        if (changed->size() == changed->max_size())
            throw std::length_error("list<T> too long");
        const auto entry = std::make_shared<Entry>(listener, rankOf(listener));
        const auto place = std::ranges::upper_bound(*changed, entry->rank, {}, &Entry::rankIn);
        if (order == ListenerOrder::address && place != changed->begin() &&
            (*(place - 1))->rank == entry->rank)
            return;
        changed->insert(place, entry);
        publish(std::move(changed));
    }

    /// Every occurrence of `listener`, if there is any.
    void remove(Listener* listener) noexcept {
        {
            const std::lock_guard lock(changing);
            if (markAsRemoved(listener))
                dropRemoved();
        }
        if (NotifyingThread::isCurrent())
            return;
        while (isBeingCalled(listener))
            std::this_thread::sleep_for(std::chrono::microseconds(50));
    }

    /// Calls `call(listener)` on each, in order, on this thread.
    template <typename Call>
    void notify(Call&& call) {
        if (current.load() == nullptr)
            return;
        const NotifyingThread here;
        const Counted visit(visits);
        std::uint64_t reached = 0;
        while (Entry* const entry = firstAbove(reached)) {
            reached = entry->rank;
            const Counted running(entry->calls);
            if (!entry->removed)
                call(*entry->listener);
        }
    }

private:
    using Count = std::atomic<std::uint32_t>;

    struct Entry {
        Entry(Listener* listener, std::uint64_t rank) noexcept : listener(listener), rank(rank) {}
        static std::uint64_t rankIn(const std::shared_ptr<Entry>& entry) noexcept { return entry->rank; }

        Listener* listener;
        std::uint64_t rank; ///< Its place in the order; above 0.
        Count calls{0};     ///< Under way on all threads.
        std::atomic<bool> removed{false};
    };

    /// Immutable once it is published; in the order of the ranks. Only those who change the list own or release.
    using Snapshot = std::vector<std::shared_ptr<Entry>>;

    /// Counts up for the length of a scope.
    class Counted {
    public:
        explicit Counted(Count& given) noexcept : count(given) { ++count; }
        ~Counted() { --count; }
        Counted(const Counted&) = delete;
        Counted& operator=(const Counted&) = delete;

    private:
        Count& count;
    };

    std::uint64_t rankOf(const Listener* listener) noexcept {
        if constexpr (order == ListenerOrder::registration)
            return ++lastRank;
        else
            return reinterpret_cast<std::uintptr_t>(listener);
    }

    /// The snapshot is loaded anew for each step: a listener may change the list that it is called from.
    Entry* firstAbove(std::uint64_t rank) const noexcept {
        const Snapshot* const entries = current.load();
        if (entries == nullptr)
            return nullptr;
        const auto next = std::ranges::upper_bound(*entries, rank, {}, &Entry::rankIn);
        return next != entries->end() ? next->get() : nullptr;
    }

    std::unique_ptr<Snapshot> listedEntries() const {
        auto entries = std::make_unique<Snapshot>();
        if (newest != nullptr)
            std::ranges::copy_if(*newest, std::back_inserter(*entries),
                                 [](const auto& entry) { return !entry->removed; });
        return entries;
    }

    void publish(std::unique_ptr<Snapshot> changed) {
        retired.reserve(retired.size() + 1);
        current = changed->empty() ? nullptr : changed.get();
        newest.swap(changed);
        if (changed != nullptr)
            retired.push_back(std::move(changed));
        if (visits == 0) // whoever comes after this look finds the snapshot that was published before it
            retired.clear();
    }

    bool markAsRemoved(const Listener* listener) noexcept {
        bool found = false;
        if (newest != nullptr)
            for (const auto& entry : *newest)
                if (entry->listener == listener && !entry->removed) {
                    entry->removed = true;
                    found = true;
                }
        return found;
    }

    void dropRemoved() noexcept {
        try {
            publish(listedEntries());
        } catch (const std::bad_alloc&) {
            // Marked entries are not called; the next change leaves them out.
        }
    }

    /// Entries that were removed earlier, inside a callback, count too.
    bool isBeingCalled(const Listener* listener) noexcept {
        const std::lock_guard lock(changing);
        const auto calls = [&](const std::unique_ptr<Snapshot>& entries) {
            return entries != nullptr && std::ranges::any_of(*entries, [&](const auto& entry) {
                       return entry->listener == listener && entry->removed && entry->calls != 0;
                   });
        };
        return calls(newest) || std::ranges::any_of(retired, calls);
    }

    std::atomic<const Snapshot*> current{
        nullptr};        ///< What notifications read: `newest`, null when it is empty.
    Count visits{0};     ///< Notifications under way on all threads.
    std::mutex changing; ///< Guards what follows; notifications never take it.
    std::unique_ptr<Snapshot> newest;
    std::vector<std::unique_ptr<Snapshot>> retired; ///< May still be read by a visit.
    std::uint64_t lastRank = 0;
};

/// See Listeners.
template <typename Listener>
using ListenerList = Listeners<Listener, ListenerOrder::registration>;
template <typename Listener>
using ListenerSet = Listeners<Listener, ListenerOrder::address>;

} // namespace zmtl
