// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <span>

namespace orvane::kestrum {

/// Whether a chunk that a host hands back may be given to the framework's reader, which trusts what it reads: it walks past
/// the end of text that is no UTF-8 or breaks off inside a character reference, calls itself once per level of nesting,
/// expands entities without end, never comes back from some processing instructions, and takes a tree whose end has been
/// cut off for a whole one.
///
/// Shape   4 bytes of a mark that the reader checks itself, the text's length as a little-endian 32-bit number, the text.
/// Thread  any.
bool isReadableState(std::span<const unsigned char> chunk) noexcept;

} // namespace orvane::kestrum
