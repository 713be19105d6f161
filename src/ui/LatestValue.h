// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <bit>
#include <cstdint>
#include <optional>
#include <type_traits>

namespace orvane::kestrum {

/// The last value that any thread has left, until it is taken. What has not been taken is overwritten.
///
/// Thread  any, wait-free.
template <typename T>
class LatestValue {
    static_assert(std::is_same_v<T, bool> || sizeof(T) == sizeof(std::uint32_t));

public:
    void store(T value) noexcept { slot.store(occupied | toBits(value)); }

    std::optional<T> take() noexcept {
        const std::uint64_t held = slot.exchange(0);
        return held != 0 ? std::optional(fromBits(static_cast<std::uint32_t>(held))) : std::nullopt;
    }

    void discard() noexcept { slot.store(0); }
    bool isWaiting() const noexcept { return slot.load() != 0; }

private:
    static constexpr std::uint64_t occupied = std::uint64_t{1} << 32u;

    static std::uint32_t toBits(T value) noexcept {
        if constexpr (std::is_same_v<T, bool>)
            return value ? 1u : 0u;
        else
            return std::bit_cast<std::uint32_t>(value);
    }

    static T fromBits(std::uint32_t bits) noexcept {
        if constexpr (std::is_same_v<T, bool>)
            return bits != 0;
        else
            return std::bit_cast<T>(bits);
    }

    std::atomic<std::uint64_t> slot{0};
    static_assert(decltype(slot)::is_always_lock_free);
};

} // namespace orvane::kestrum
