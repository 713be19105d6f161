// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/LinkProbe.h"

#include "ipc/HeadRotation.h"

#include <boost/interprocess/managed_shared_memory.hpp>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvane::kestrum::track {

namespace {

/// A segment that is just being made has no size yet, and opening it would wait.
bool segmentIsThere() {
    const int descriptor = shm_open((std::string("/") + OrvaneIPC::segmentName).c_str(), O_RDONLY, 0);
    if (descriptor < 0)
        return false;
    struct stat facts {};
    const bool there = fstat(descriptor, &facts) == 0 && S_ISREG(facts.st_mode) &&
                       facts.st_size == static_cast<off_t>(OrvaneIPC::segmentSize);
    close(descriptor);
    return there;
}

} // namespace

std::optional<LinkState> probeLink() {
    namespace interprocess = boost::interprocess;
    if (!segmentIsThere())
        return std::nullopt;
    try {
        interprocess::managed_shared_memory segment(interprocess::open_only, OrvaneIPC::segmentName);
        const auto [record, count] = segment.find<OrvaneIPC::HeadRotation::Data>(OrvaneIPC::headRotationName);
        if (count == 0)
            return std::nullopt;
        LinkState state;
        state.active = std::atomic_ref(record->active).load() != 0;
        state.locked = (std::atomic_ref(record->lock).load() & 1u) != 0;
        for (std::size_t index = 0; index < state.rotation.size(); ++index)
            state.rotation[index] = std::atomic_ref(record->rotation[index]).load(std::memory_order_relaxed);
        return state;
    } catch (const interprocess::interprocess_exception&) {
        return std::nullopt;
    }
}

} // namespace orvane::kestrum::track
