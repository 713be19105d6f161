// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <bit>
#include <cstdint>
#include <type_traits>

namespace orvane::kestrum::core {

/// Calls `push` with what `value` holds, again and again while that is no longer what was pushed.
///
/// Two threads that set a value at once call its listeners in any order, so the later push may carry the earlier
/// value. Whoever pushes last has read the value after its push, and so leaves what is held.
template <typename Value, typename Push>
void pushLatest(const Value& value, Push&& push) {
    const auto bits = [](auto held) {
        if constexpr (std::is_same_v<decltype(held), float>)
            return std::bit_cast<std::uint32_t>(held); // ends with what compares unequal to itself, too
        else
            return held;
    };
    auto pushed = value.getValue();
    push(pushed);
    for (auto held = value.getValue(); bits(held) != bits(pushed); held = value.getValue()) {
        push(held);
        pushed = held;
    }
}

} // namespace orvane::kestrum::core
