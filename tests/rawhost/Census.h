// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Play.h"

#include <cstddef>
#include <filesystem>
#include <string>

namespace rawhost {

/// What a process holds at one moment.
struct Census {
    std::size_t threads = 0;
    std::size_t descriptors = 0;
    std::size_t heapBytes = 0; ///< In use, in all arenas and in mappings of the allocator.
};

Census takeCensus();

/// Waits for threads that are ending: a joined one may still be listed for a moment.
/// @return as soon as no more than `threads` are left, or after a guard of some seconds with what there is.
Census censusOnceSettled(std::size_t threads);

/// Notes what `now` holds more than `before`: any thread, any descriptor, and heap beyond `heapAllowance` bytes.
void expectNoMore(Findings& findings, const Census& before, const Census& now, std::size_t heapAllowance);

/// Whether a file's content is part of the process.
bool isMapped(const std::filesystem::path& file);

} // namespace rawhost
