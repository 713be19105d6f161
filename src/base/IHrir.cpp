// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/IHrir.h"

#include <atomic>

namespace orvane {

std::uint64_t newHrirGeneration() noexcept {
    static std::atomic<std::uint64_t> next{1};
    return next.fetch_add(1, std::memory_order_relaxed);
}

} // namespace orvane
