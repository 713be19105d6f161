// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <span>

namespace OrvaneIPC {

/// What a segment holds whose every size, pointer and name on the way to the record was found to be sound.
struct ProvenSegment {
    std::optional<std::size_t> record; ///< Where the record begins, bytes from the segment's start.
};

/// Looks for the record in a private copy of a segment, taking every byte as hostile. The segment's own library trusts what it
/// finds: it waits for ever for a segment that was never finished or whose server died inside it, and follows any pointer.
///
/// Proven is a segment of `segmentSize` bytes that is initialised and nobody's own lock holds, whose sizes are those that its
/// library gives a segment of that size, whose index has as many entries as it says, each within the segment, and in it at
/// most one record of 72 bytes. Whether the record's lock is free is not asked.
///
/// @return nothing for a segment that is not proven.
/// Errors  std::bad_alloc.
std::optional<ProvenSegment> proveSegmentCopy(std::span<const std::byte> copy);

/// The same for an open segment, of which a private copy is made. A server at work holds the segment's lock for some
/// microseconds and needs a few more to make a new segment, so what is not proven is looked at again, for 20 ms in all.
///
/// @param descriptor borrowed, open for reading; whatever it leads to.
/// Thread  one that may wait.
/// Errors  std::bad_alloc.
std::optional<ProvenSegment> proveSegment(int descriptor);

} // namespace OrvaneIPC
