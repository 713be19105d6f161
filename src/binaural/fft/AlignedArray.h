// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>

namespace orvane::fft {

inline constexpr std::size_t alignment = 64; ///< Bytes: one cache line, and enough for every vector unit.

struct AlignedDelete {
    void operator()(void* memory) const noexcept { std::free(memory); }
};

/// Shape   [count], zero-filled, aligned to `alignment` at its start.
template <typename T>
using AlignedArray = std::unique_ptr<T[], AlignedDelete>;

/// @throws std::bad_alloc
template <typename T>
AlignedArray<T> makeAlignedArray(std::size_t count) {
    static_assert(std::is_trivial_v<T>);
    const std::size_t bytes = (count * sizeof(T) + alignment - 1) / alignment * alignment;
    void* const memory = std::aligned_alloc(alignment, bytes > 0 ? bytes : alignment);
    if (memory == nullptr)
        throw std::bad_alloc();
    std::memset(memory, 0, bytes);
    return AlignedArray<T>(static_cast<T*>(memory));
}

} // namespace orvane::fft
