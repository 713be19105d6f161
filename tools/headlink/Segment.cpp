// SPDX-License-Identifier: GPL-3.0-or-later
#include "headlink/Segment.h"

#include "headlink/Access.h"

#include "ipc/HeadRotation.h"
#include "ipc/SegmentCheck.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvane::kestrum::headlink {

namespace fs = std::filesystem;

namespace {

using Record = OrvaneIPC::HeadRotation::Data;

constexpr std::chrono::milliseconds betweenLooks{5};
constexpr int lookCount = 60;

/// Closes what it was given.
struct Descriptor {
    int number;
    explicit Descriptor(int opened) : number(opened) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (number >= 0)
            close(number);
    }
};

fs::path fileOf(const std::string& name) { return fs::path("/dev/shm") / name; }

/// A copy that may be torn: whether something changes is all that is asked of it.
Record copyOf(const Record& record) {
    Record copy;
    std::atomic_signal_fence(std::memory_order_seq_cst); // or the compiler may read memory once for all looks
    std::memcpy(&copy, &record, sizeof copy);
    return copy;
}

/// A segment, mapped by hand: the library would wait for its locks, which its dead owner may have held.
class Mapping {
public:
    Mapping(const Descriptor& segment, int access)
        : memory(mmap(nullptr, OrvaneIPC::segmentSize, access, MAP_SHARED, segment.number, 0)) {}
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;
    ~Mapping() {
        if (memory != MAP_FAILED)
            munmap(memory, OrvaneIPC::segmentSize);
    }

    /// Null where nothing could be mapped.
    Record* recordAt(std::size_t position) const {
        if (memory == MAP_FAILED)
            return nullptr;
        return reinterpret_cast<Record*>( // NOLINT(*-reinterpret-cast): the check has found it there
            static_cast<std::byte*>(memory) + position);
    }

private:
    void* memory;
};

void watchRecord(const Record& record, SegmentState& state) {
    const Record first = copyOf(record);
    state.active = first.active != 0;
    state.locked = (first.lock & 1U) != 0;
    for (int look = 0; look < lookCount; ++look) {
        std::this_thread::sleep_for(betweenLooks);
        const Record now = copyOf(record);
        state.active = now.active != 0;
        state.locked = state.locked && (now.lock & 1U) != 0;
        state.moving = state.moving || std::memcmp(now.rotation, first.rotation, sizeof now.rotation) != 0;
    }
}

/// Looks for the record in a segment of the right size, and at what happens to it.
void lookInside(const fs::path& file, SegmentState& state) {
    const Descriptor segment(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    const auto proven = OrvaneIPC::proveSegment(segment.number);
    if (!proven || !proven->record) {
        state.kind = proven ? SegmentState::Kind::noRecord : SegmentState::Kind::damaged;
        return;
    }
    state.record = *proven->record;
    const Mapping mapping(segment, PROT_READ);
    if (const Record* const record = mapping.recordAt(state.record); record != nullptr)
        watchRecord(*record, state);
}

bool isHeld(const fs::path& file) {
    const Descriptor segment(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    return segment.number >= 0 && flock(segment.number, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

/// Outermost first: what the next step relies on.
SegmentState fromOutside(const fs::path& file, uid_t user) {
    SegmentState state;
    struct stat facts {};
    if (stat(file.c_str(), &facts) != 0)
        return state;
    state.size = static_cast<std::uintmax_t>(facts.st_size);
    state.inode = facts.st_ino;
    state.held = isHeld(file);
    if (user != 0 && !mayUse(file, user, 6U))
        state.kind = SegmentState::Kind::closed;
    else if (!OrvaneIPC::isOfTheUsersOwn(facts, user))
        state.kind = SegmentState::Kind::foreign;
    else if (!S_ISREG(facts.st_mode) || state.size != OrvaneIPC::segmentSize)
        state.kind = SegmentState::Kind::wrongSize;
    else
        state.kind = SegmentState::Kind::whole;
    return state;
}

} // namespace

SegmentState lookAtSegment(const std::string& name, uid_t user) {
    SegmentState state = fromOutside(fileOf(name), user);
    if (state.kind == SegmentState::Kind::whole)
        lookInside(fileOf(name), state);
    return state;
}

void switchOff(const std::string& name, const SegmentState& state) {
    if (state.kind != SegmentState::Kind::whole)
        return;
    const Descriptor segment(open(fileOf(name).c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW));
    struct stat facts {};
    if (segment.number < 0 || fstat(segment.number, &facts) != 0 || facts.st_ino != state.inode ||
        facts.st_size != static_cast<off_t>(OrvaneIPC::segmentSize))
        return;
    const Mapping mapping(segment, PROT_READ | PROT_WRITE);
    if (Record* const record = mapping.recordAt(state.record); record != nullptr)
        OrvaneIPC::HeadRotation(record).setActive(false);
}

bool roomForSegment(const std::string& folder) {
    const Descriptor trial(open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    if (trial.number < 0)
        return errno != ENOSPC && errno != EDQUOT; // anything else is told when the segment itself is made
    const int failure = posix_fallocate(trial.number, 0, static_cast<off_t>(OrvaneIPC::segmentSize));
    return failure != ENOSPC && failure != EDQUOT;
}

SegmentMark::SegmentMark(const std::string& name)
    : descriptor(open(fileOf(name).c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW)) {
    // Whoever looks whether it is marked takes the lock for a moment, too.
    for (int attempt = 0; attempt < 20 && flock(descriptor, LOCK_EX | LOCK_NB) != 0; ++attempt)
        usleep(2000);
}

SegmentMark::~SegmentMark() {
    if (descriptor >= 0)
        close(descriptor);
}

} // namespace orvane::kestrum::headlink
