// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/zmtl/NotifyingThread.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <thread>

namespace zmtl {

namespace {

struct Place {
    std::atomic<std::thread::id> owner; ///< Nobody while the place is free.
    int depth = 0;                      ///< Marks inside one another; the owner's alone.
};

static_assert(std::atomic<std::thread::id>::is_always_lock_free, "the audio thread takes a place");

std::array<Place, NotifyingThread::capacity> places;

constexpr int none = -1;

/// No other thread writes or removes an entry that names this one, so the order of other stores does not matter.
int placeOf(std::thread::id thread) noexcept {
    for (std::size_t index = 0; index < places.size(); ++index)
        if (places[index].owner.load(std::memory_order_relaxed) == thread)
            return static_cast<int>(index);
    return none;
}

int claimAPlace(std::thread::id thread) noexcept {
    for (;;) {
        for (std::size_t index = 0; index < places.size(); ++index) {
            std::thread::id nobody;
            if (places[index].owner.compare_exchange_strong(nobody, thread))
                return static_cast<int>(index);
        }
        std::this_thread::yield();
    }
}

} // namespace

NotifyingThread::NotifyingThread() noexcept {
    const auto self = std::this_thread::get_id();
    const int held = placeOf(self);
    place = held != none ? held : claimAPlace(self);
    ++places[static_cast<std::size_t>(place)].depth;
}

NotifyingThread::~NotifyingThread() {
    Place& left = places[static_cast<std::size_t>(place)];
    if (--left.depth == 0)
        left.owner.store(std::thread::id());
}

bool NotifyingThread::isCurrent() noexcept { return placeOf(std::this_thread::get_id()) != none; }

} // namespace zmtl
