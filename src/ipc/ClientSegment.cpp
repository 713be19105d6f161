// SPDX-License-Identifier: GPL-3.0-or-later
#include "ipc/ClientSegment.h"

#include "ipc/SegmentCheck.h"

#include <string>
#include <utility>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace OrvaneIPC {

namespace {

/// An open segment.
class Descriptor {
public:
    explicit Descriptor(int opened) noexcept : number(opened) {}
    ~Descriptor() {
        if (number >= 0)
            close(number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    const int number;
};

} // namespace

std::optional<ClientSegment> ClientSegment::open(const char* name) {
    const Descriptor descriptor(shm_open(("/" + std::string(name)).c_str(), O_RDWR, 0));
    struct stat facts {};
    if (descriptor.number < 0 || fstat(descriptor.number, &facts) != 0 || !isOfTheUsersOwn(facts, geteuid()))
        return std::nullopt;
    const auto proven = proveSegment(descriptor.number);
    if (!proven)
        return std::nullopt;
    void* const memory = mmap(nullptr, segmentSize, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor.number, 0);
    if (memory == MAP_FAILED)
        return std::nullopt;
    return ClientSegment(static_cast<std::byte*>(memory), proven->record);
}

ClientSegment::ClientSegment(ClientSegment&& other) noexcept
    : memory(std::exchange(other.memory, nullptr)), recordPosition(other.recordPosition) {}

ClientSegment::~ClientSegment() {
    if (memory != nullptr)
        munmap(memory, segmentSize);
}

HeadRotation::Data* ClientSegment::record() const noexcept {
    if (!recordPosition)
        return nullptr;
    return reinterpret_cast<HeadRotation::Data*>( // NOLINT(*-reinterpret-cast): a server has made it there
        memory + *recordPosition);
}

} // namespace OrvaneIPC
