// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ipc/HeadRotation.h"

#include <cstddef>
#include <optional>

namespace OrvaneIPC {

/// The shared segment in a client's hands: opened, proven and mapped through one descriptor, so that what was
/// proven is what is mapped, whatever happens to the name meanwhile.
///
/// Nothing of the segment is read after the proof but the record, at the place that was proven, and none of the
/// segment's own locks is ever taken: its server may die at any moment.
class ClientSegment {
public:
    /// Nothing when there is no such segment, it may not be read and written, or it is not proven, of which see
    /// proveSegment().
    ///
    /// Thread  one that may wait.
    /// Errors  std::bad_alloc.
    static std::optional<ClientSegment> open(const char* name);

    ~ClientSegment();
    ClientSegment(ClientSegment&& other) noexcept;
    ClientSegment& operator=(ClientSegment&&) = delete;

    /// In the mapping, valid as long as this lives; null for a segment without the record.
    HeadRotation::Data* record() const noexcept;

private:
    ClientSegment(std::byte* memory, std::optional<std::size_t> recordPosition) noexcept
        : memory(memory), recordPosition(recordPosition) {}

    std::byte* memory;
    std::optional<std::size_t> recordPosition;
};

} // namespace OrvaneIPC
