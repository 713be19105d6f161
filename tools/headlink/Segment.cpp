// SPDX-License-Identifier: GPL-3.0-or-later
#include "headlink/Segment.h"

#include "headlink/Access.h"
#include "headlink/ChildProcess.h"

#include "ipc/HeadRotation.h"

#include <boost/interprocess/managed_shared_memory.hpp>

#include <atomic>
#include <bit>
#include <cerrno>
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
constexpr std::chrono::seconds limit{3};

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

/// Where the record lies in the file: a mapping begins at a page, the library's own address behind its header.
std::size_t placeOf(const Record* record, const void* libraryAddress) {
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto start = std::bit_cast<std::uintptr_t>(libraryAddress) / page * page;
    return std::bit_cast<std::uintptr_t>(record) - start;
}

/// Runs in the child. @return "", or three letters, active, moving, locked, and the record's place.
std::string lookInside(const std::string& name) {
    namespace interprocess = boost::interprocess;
    const interprocess::managed_shared_memory segment(interprocess::open_read_only, name.c_str());
    // Of a memory that cannot be written, the record is looked for without the segment's own lock.
    const auto [record, count] = const_cast<interprocess::managed_shared_memory&>(
                                     segment) // NOLINT(*-const-cast): find() knows no const
                                     .find<Record>(OrvaneIPC::headRotationName);
    if (count == 0)
        return "";
    const Record first = copyOf(*record);
    bool active = first.active != 0;
    bool moving = false;
    bool locked = (first.lock & 1U) != 0;
    for (int look = 0; look < lookCount; ++look) {
        std::this_thread::sleep_for(betweenLooks);
        const Record now = copyOf(*record);
        active = now.active != 0;
        locked = locked && (now.lock & 1U) != 0;
        moving = moving || std::memcmp(now.rotation, first.rotation, sizeof now.rotation) != 0;
    }
    return std::string(active ? "a" : "-") + (moving ? "m" : "-") + (locked ? "l" : "-") +
           std::to_string(placeOf(record, segment.get_address()));
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
    else if (!S_ISREG(facts.st_mode) || state.size != OrvaneIPC::segmentSize)
        state.kind = SegmentState::Kind::wrongSize;
    else
        state.kind = SegmentState::Kind::whole;
    return state;
}

/// What the child has answered, letters and place.
void takeAnswer(const std::string& answer, SegmentState& state) {
    if (answer.size() < 4) {
        state.kind = SegmentState::Kind::noRecord;
        return;
    }
    state.active = answer[0] == 'a';
    state.moving = answer[1] == 'm';
    state.locked = answer[2] == 'l';
    state.record = std::stoul(answer.substr(3));
    if (state.record % alignof(Record) != 0 || state.record > OrvaneIPC::segmentSize - sizeof(Record))
        state.kind = SegmentState::Kind::damaged;
}

} // namespace

SegmentState lookAtSegment(const std::string& name, uid_t user) {
    SegmentState state = fromOutside(fileOf(name), user);
    if (state.kind != SegmentState::Kind::whole)
        return state;
    const ChildResult result = inChildProcess([&name] { return lookInside(name); }, limit);
    if (result.end == ChildResult::End::answered)
        takeAnswer(result.text, state);
    else
        state.kind = SegmentState::Kind::damaged;
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
    // Mapped by hand: the library would wait for the segment's own locks, which its dead owner may have held.
    void* const memory =
        mmap(nullptr, OrvaneIPC::segmentSize, PROT_READ | PROT_WRITE, MAP_SHARED, segment.number, 0);
    if (memory == MAP_FAILED)
        return;
    OrvaneIPC::HeadRotation(
        reinterpret_cast<Record*>( // NOLINT(*-reinterpret-cast): the child has found it there
            static_cast<std::byte*>(memory) + state.record))
        .setActive(false);
    munmap(memory, OrvaneIPC::segmentSize);
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
