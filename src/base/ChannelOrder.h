// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace orvane {

/// Which channel of the host's bus feeds each channel of a layout; at first entry i is bus channel i. A permutation of as
/// many channels as the layout has, so a bus that is wide enough for the layout holds every entry.
///
/// Thread  set() on the host's setup thread, get() on the audio thread: relaxed atomics, one per channel. A host changes
///         its bus between blocks; should it not, a block may mix both orders.
class ChannelOrder {
public:
    static constexpr std::size_t maximumLength = 16; ///< Channels of the widest bus.
    using Table = std::array<std::uint8_t, maximumLength>;

    static constexpr Table identity{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};

    ChannelOrder() noexcept { set(identity); }

    void set(const Table& busChannels) noexcept {
        for (std::size_t channel = 0; channel < maximumLength; ++channel)
            table[channel].store(busChannels[channel], std::memory_order_relaxed);
    }

    /// The bus channel that feeds the layout's `channel`, which lies below maximumLength.
    std::size_t get(std::size_t channel) const noexcept ORVANE_REALTIME {
        return table[channel].load(std::memory_order_relaxed);
    }

private:
    std::array<std::atomic<std::uint8_t>, maximumLength> table;
};

} // namespace orvane
