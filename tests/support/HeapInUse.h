// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdlib>

#include <malloc.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
/// Of the sanitizers' runtime; the compiler comes without the header that declares it.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace test {

/// Bytes that all threads of the process together hold on the heap: what was allocated and not yet freed, whatever the
/// allocator keeps for later. What other living threads keep for themselves counts as held; they may be some kilobytes.
inline std::size_t heapInUse() noexcept {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return __sanitizer_get_current_allocated_bytes();
#else
    // Each thread keeps up to seven freed chunks of each small size, 240 kilobytes in all, which the C library counts as held.
    // While as many are taken, this thread keeps none, and what is counted does not depend on what it has freed of late.
    constexpr std::size_t sizes = 64;
    constexpr std::size_t ofEach = 7;
    std::array<void*, sizes * ofEach> taken{};
    for (std::size_t index = 0; index < taken.size(); ++index)
        taken[index] = std::malloc(24 + 16 * (index / ofEach)); // the largest request of each size
    const auto arenas = mallinfo2();
    for (void* const chunk : taken)
        std::free(chunk);
    return arenas.uordblks + arenas.hblkhd;
#endif
}

} // namespace test
