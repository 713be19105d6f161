// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/EngineHandover.h"

#include <chrono>
#include <thread>
#include <utility>

namespace orvane {

EngineHandover::EngineHandover(std::shared_ptr<IEngine> first) noexcept
    : owner(std::move(first)), published(owner.get()) {}

EngineHandover::Reader::Reader(EngineHandover& source) noexcept : handover(source), held(nullptr) {
    handover.turn.store(handover.turn.load(std::memory_order_relaxed) + 1, std::memory_order_seq_cst);
    held = handover.published.load(std::memory_order_seq_cst);
}

EngineHandover::Reader::~Reader() {
    handover.turn.store(handover.turn.load(std::memory_order_relaxed) + 1, std::memory_order_seq_cst);
}

std::shared_ptr<IEngine> EngineHandover::exchange(std::shared_ptr<IEngine> next) noexcept {
    using namespace std::chrono_literals;
    published.store(next.get(), std::memory_order_seq_cst);
    owner.swap(next);
    const std::uint64_t seen = turn.load(std::memory_order_seq_cst);
    if (seen % 2 != 0) {
        while (turn.load(std::memory_order_seq_cst) == seen)
            std::this_thread::sleep_for(50us);
    }
    return next;
}

} // namespace orvane
