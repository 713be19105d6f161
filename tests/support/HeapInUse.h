// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

#include <malloc.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
/// Of the sanitizers' runtime; the compiler comes without the header that declares it.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace test {

/// Bytes that all threads of the process together hold on the heap: what was allocated and not yet freed, whatever the
/// allocator keeps for later. A few kilobytes of chunks that threads keep for themselves count as held.
inline std::size_t heapInUse() noexcept {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return __sanitizer_get_current_allocated_bytes();
#else
    const auto arenas = mallinfo2();
    return arenas.uordblks + arenas.hblkhd;
#endif
}

} // namespace test
