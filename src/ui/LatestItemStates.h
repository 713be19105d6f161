// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace orvane::kestrum {

/// For each item of a selector, whether any thread has lately enabled or disabled it, until that is taken.
///
/// Thread  store() and discard() on any, lock-free: an item claims a place for good when it is first named.
///         take() on one thread at a time.
class LatestItemStates {
public:
    /// More than any selector has items; what finds no place is forgotten.
    static constexpr std::size_t capacity = 64;

    /// @param id not 0, which no item has.
    void store(std::uint32_t id, bool enabled) noexcept {
        if (Place* const place = placeOf(id, true))
            place->state.store(enabled ? State::enabled : State::disabled);
    }

    void discard(std::uint32_t id) noexcept {
        if (Place* const place = placeOf(id, false))
            place->state.store(State::none);
    }

    /// Calls `apply(id, enabled)` for each state that was left since the last time.
    template <typename Apply>
    void take(Apply&& apply) {
        for (Place& place : places) {
            const std::uint32_t id = place.id.load();
            if (id == 0)
                return;
            if (const State state = place.state.exchange(State::none); state != State::none)
                apply(id, state == State::enabled);
        }
    }

private:
    enum class State : std::uint8_t { none, enabled, disabled };

    struct Place {
        std::atomic<std::uint32_t> id{0};
        std::atomic<State> state{State::none};
    };

    Place* placeOf(std::uint32_t id, bool claim) noexcept {
        for (Place& place : places) {
            std::uint32_t held = place.id.load();
            if (held == id)
                return &place;
            if (held != 0)
                continue;
            if (!claim)
                return nullptr;
            if (place.id.compare_exchange_strong(held, id) || held == id)
                return &place;
        }
        return nullptr;
    }

    std::array<Place, capacity> places;
};

} // namespace orvane::kestrum
