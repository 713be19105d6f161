// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace orvane::kestrum::core {

/// An ordered set of borrowed listeners that may be called on any thread while it changes on another: a host
/// writes parameters, and with them values, while an editor opens and closes.
///
///     notify()  enter a place ─► load the list, call the next listener in it, and so on ─► leave the place
///     change    publish the new list ─► wait for every other thread that is inside ─► free the old list
///
/// A listener that has been removed is not called any more and may be destroyed, also in the midst of a
/// notification of the same thread.
///
/// Thread  notify() on any thread, also from inside a listener; neither allocates nor locks, and waits only
///         when more than `placeCount` threads notify at once. add() and remove() on one thread at a time; they
///         allocate, and wait as long as other threads' notifications run.
template <typename Listener>
class ListenerSet {
public:
    ListenerSet() : list(std::make_unique<List>()), current(list.get()) {}

    /// A second adding changes nothing.
    void add(Listener* listener) {
        const auto place = std::ranges::lower_bound(*list, listener, std::less<>());
        if (place != list->end() && *place == listener)
            return;
        auto changed = std::make_unique<List>(*list);
        changed->insert(changed->begin() + (place - list->begin()), listener);
        exchange(std::move(changed));
    }

    void remove(Listener* listener) {
        const auto place = std::ranges::lower_bound(*list, listener, std::less<>());
        if (place == list->end() || *place != listener)
            return;
        auto changed = std::make_unique<List>(*list);
        changed->erase(changed->begin() + (place - list->begin()));
        exchange(std::move(changed));
    }

    /// Calls `call(listener)` on each, in the order of their addresses.
    template <typename Call>
    void notify(Call&& call) {
        const Visit visit(places);
        for (Listener* next = firstAbove(nullptr); next != nullptr; next = firstAbove(next))
            call(*next);
    }

private:
    using List = std::vector<Listener*>;
    static constexpr std::size_t placeCount = 16;

    /// Where one thread stands while it notifies.
    struct Place {
        std::atomic<std::thread::id> owner; ///< None while the place is free.
        std::atomic<std::uint32_t> turn{0}; ///< Counts the visits that have ended.
        int depth = 0; ///< The owner's notifications inside one another; the owner's alone.
    };
    using Places = std::array<Place, placeCount>;

    class Visit {
    public:
        explicit Visit(Places& places) noexcept : place(enter(places)) { ++place.depth; }
        ~Visit() {
            if (--place.depth == 0) {
                place.turn.fetch_add(1);
                place.owner.store(std::thread::id());
            }
        }
        Visit(const Visit&) = delete;
        Visit& operator=(const Visit&) = delete;

    private:
        static Place& enter(Places& places) noexcept {
            const auto self = std::this_thread::get_id();
            for (Place& place : places)
                if (place.owner.load() == self)
                    return place;
            for (;;)
                for (Place& place : places) {
                    std::thread::id nobody;
                    if (place.owner.compare_exchange_strong(nobody, self))
                        return place;
                }
        }

        Place& place;
    };

    static_assert(std::atomic<std::thread::id>::is_always_lock_free);

    /// The list is loaded anew for each step: a listener may change the set that it is called from.
    Listener* firstAbove(Listener* listener) const noexcept {
        const List& listeners = *current.load();
        const auto next = std::ranges::upper_bound(listeners, listener, std::less<>());
        return next != listeners.end() ? *next : nullptr;
    }

    void exchange(std::unique_ptr<List> changed) {
        current.store(changed.get());
        list.swap(changed);
        const auto self = std::this_thread::get_id();
        for (const Place& place : places) {
            const auto turn = place.turn.load();
            const auto owner = place.owner.load();
            if (owner == std::thread::id() || owner == self)
                continue;
            while (place.turn.load() == turn && place.owner.load() == owner)
                std::this_thread::yield();
        }
    }

    Places places;
    std::unique_ptr<List> list;
    std::atomic<const List*> current; ///< What notifications read: `list`.
};

} // namespace orvane::kestrum::core
