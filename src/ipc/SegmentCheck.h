// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include <sys/stat.h>

namespace OrvaneIPC {

/// Whether a segment is the user's own or root's, and nobody else may write to it. Everybody may lay a file under the segment's
/// name; whoever can write to it can hold its lock for ever or cut it short, and so stop or end the hosts that read it.
///
/// @param facts of the open segment: whoever owns it may change its mode any time, so the mode alone proves nothing.
bool isOfTheUsersOwn(const struct stat& facts, uid_t user) noexcept;

/// What a segment holds whose sizes, pointers and names were found to be sound.
struct ProvenSegment {
    std::optional<std::size_t> record; ///< Where the record begins, bytes from the segment's start.
};

/// Looks for the record in a private copy of a segment, taking every byte as hostile. The segment's own library
/// trusts what it finds: it waits for ever for a segment that was never finished or whose server died inside it,
/// and follows any pointer.
///
/// Proven is a segment of `segmentSize` bytes that is initialised and whose own lock is free, with the sizes that
/// its library gives a segment of that size and an index of as many entries as it says, each within the segment;
/// an entry by the record's name is one record of 72 bytes. The record's lock is not asked about.
///
/// @return nothing for a segment that is not proven.
/// Errors  std::bad_alloc.
std::optional<ProvenSegment> proveSegmentCopy(std::span<const std::byte> copy);

/// The same for an open segment, of which a private copy is made. A server at work holds the segment's lock for
/// some microseconds and needs a few more to make a new segment, so what is not proven is looked at again, for
/// about 20 ms in all.
///
/// @param descriptor borrowed, open for reading; whatever it leads to.
/// Thread  one that may wait.
/// Errors  std::bad_alloc.
std::optional<ProvenSegment> proveSegment(int descriptor);

} // namespace OrvaneIPC
