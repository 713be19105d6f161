// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ChannelOrder.h"
#include "base/Speaker.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace orvane::kestrum::core {

/// The table of speaker layouts. Immutable after construction, read from any thread.
class ISupportedLayouts {
public:
    struct Properties {
        std::uint32_t id = 0; ///< Selector identifier of `name`.
        std::string name;
        std::uint64_t channelCount = 0; ///< Entries of `speakers`, the low-frequency channel included.
        std::vector<Speaker> speakers;  ///< Entry i is bus channel i, unless `busOrder` tells another.
        const ChannelOrder* busOrder =
            nullptr; ///< Borrowed, outlives the engines; null for a bus in this order.
    };

    virtual ~ISupportedLayouts() = default;

    /// Calls `visit` once per layout, in table order.
    virtual void forEach(std::function<void(const Properties&)> visit) const = 0;

    /// @return the layout with this identifier, valid as long as the table.
    /// @throws std::invalid_argument when there is none.
    virtual const Properties& get(std::uint32_t id) const = 0;
};

} // namespace orvane::kestrum::core
