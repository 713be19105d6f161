// SPDX-License-Identifier: GPL-3.0-or-later
// What another program may leave in the tracker's segment. Only its beginning holds anything; the rest is zeros.
#include "Fuzzed.h"

#include "ipc/HeadRotation.h"
#include "ipc/SegmentCheck.h"

#include <algorithm>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    std::vector<std::byte> segment(OrvaneIPC::segmentSize);
    std::ranges::copy(std::as_bytes(std::span(bytes, std::min(count, segment.size()))), segment.begin());
    const auto proven = OrvaneIPC::proveSegmentCopy(segment);
    if (!proven || !proven->record)
        return 0;
    using Record = OrvaneIPC::HeadRotation::Data;
    test::promise(*proven->record % alignof(Record) == 0, "a record lies where its type may lie");
    test::promise(*proven->record <= segment.size() - sizeof(Record), "a record lies within the segment");
    return 0;
}
