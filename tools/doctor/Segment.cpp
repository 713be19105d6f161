// SPDX-License-Identifier: GPL-3.0-or-later
#include "doctor/Segment.h"

#include "doctor/ChildProcess.h"

#include "ipc/HeadRotation.h"

#include <boost/interprocess/managed_shared_memory.hpp>

#include <atomic>
#include <cstring>
#include <thread>

namespace orvane::kestrum::doctor {

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::milliseconds betweenLooks{5};
constexpr int lookCount = 60;
constexpr std::chrono::seconds limit{3};

/// A copy that may be torn: whether something changes is all that is asked of it.
OrvaneIPC::HeadRotation::Data copyOf(const OrvaneIPC::HeadRotation::Data& record) {
    OrvaneIPC::HeadRotation::Data copy;
    std::atomic_signal_fence(std::memory_order_seq_cst); // or the compiler may read memory once for all looks
    std::memcpy(&copy, &record, sizeof copy);
    return copy;
}

/// Runs in the child. @return "none", or three letters: active, moving, locked.
std::string lookInside(const std::string& name) {
    namespace interprocess = boost::interprocess;
    const interprocess::managed_shared_memory segment(interprocess::open_read_only, name.c_str());
    // Of a memory that cannot be written, the record is looked for without the segment's own lock.
    const auto [record, count] = const_cast<interprocess::managed_shared_memory&>(
                                     segment) // NOLINT(*-const-cast): find() knows no const
                                     .find<OrvaneIPC::HeadRotation::Data>(OrvaneIPC::headRotationName);
    if (count == 0)
        return "none";
    const OrvaneIPC::HeadRotation::Data first = copyOf(*record);
    bool active = first.active != 0;
    bool moving = false;
    bool locked = (first.lock & 1U) != 0;
    for (int look = 0; look < lookCount; ++look) {
        std::this_thread::sleep_for(betweenLooks);
        const OrvaneIPC::HeadRotation::Data now = copyOf(*record);
        active = now.active != 0;
        locked = locked && (now.lock & 1U) != 0;
        moving = moving || std::memcmp(now.rotation, first.rotation, sizeof now.rotation) != 0;
    }
    return std::string(active ? "a" : "-") + (moving ? "m" : "-") + (locked ? "l" : "-");
}

/// Outermost first: what the next step relies on.
SegmentState fromOutside(const fs::path& file, uid_t user) {
    SegmentState state;
    std::error_code failure;
    state.size = fs::file_size(file, failure);
    if (failure)
        state.kind = SegmentState::Kind::missing;
    else if (user != 0 && !mayUse(file, user, 6U))
        state.kind = SegmentState::Kind::closed;
    else if (state.size != OrvaneIPC::segmentSize)
        state.kind = SegmentState::Kind::wrongSize;
    else
        state.kind = SegmentState::Kind::whole;
    return state;
}

} // namespace

SegmentState lookAtSegment(const std::string& name, uid_t user) {
    SegmentState state = fromOutside(fs::path("/dev/shm") / name, user);
    if (state.kind != SegmentState::Kind::whole)
        return state;
    const ChildResult result = inChildProcess([&name] { return lookInside(name); }, limit);
    if (result.end != ChildResult::End::answered)
        state.kind = SegmentState::Kind::damaged;
    else if (result.text.size() != 3)
        state.kind = SegmentState::Kind::noRecord;
    else {
        state.active = result.text[0] == 'a';
        state.moving = result.text[1] == 'm';
        state.locked = result.text[2] == 'l';
    }
    return state;
}

} // namespace orvane::kestrum::doctor
