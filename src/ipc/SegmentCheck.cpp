// SPDX-License-Identifier: GPL-3.0-or-later
#include "ipc/SegmentCheck.h"

#include "ipc/HeadRotation.h"

#include <boost/interprocess/managed_shared_memory.hpp>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <thread>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace OrvaneIPC {

namespace {

// The library's own types keep their fields to themselves and trust them, so here is how they lie in memory.
// Pointers are distances from where they stand themselves.

using LibraryLock = boost::interprocess::interprocess_recursive_mutex;
using Lock = std::array<std::uint32_t, 10>;

struct Node {
    std::int64_t parent; ///< In an entry bit 1 is the colour.
    std::int64_t left;
    std::int64_t right;
};

struct Index {
    std::uint64_t entryCount;
    Node header; ///< Its parent is the root.
};

struct SegmentHeader {
    alignas(16) std::uint32_t state;
    alignas(16) Lock allocatorLock;
    Index freeBlocks;
    std::uint64_t indexBytes; ///< Of what follows.
    std::uint64_t allocatedBytes;
    std::uint64_t managedBytes;
    Lock indexLock;
    Index namedEntries;
    Index uniqueEntries;
};

/// Behind it the value, and behind that the name and a zero.
struct Entry {
    Node node;
    std::uint64_t valueBytes;
    std::uint16_t nameLength;
    std::uint8_t valueAlignment;
    std::uint8_t typeAndCharacterBytes;
};

constexpr std::uint32_t initialisedState = 2;
constexpr std::size_t managedOffset = 16; ///< Where the library's memory begins, behind the state.
constexpr std::int64_t nullDistance = 1;
constexpr std::int64_t colourBit = 2;
constexpr std::uint8_t namedOneByteCharacters = 1 << 5 | 1;
constexpr std::size_t headerBytes = managedOffset + 200;
constexpr std::size_t indexOffset = 112;
constexpr std::size_t entryHeaderBytes = sizeof(Entry) - sizeof(Node);

using Manager = boost::interprocess::managed_shared_memory::segment_manager;
using LibraryIndex = Manager::named_index_t;
static_assert(offsetof(SegmentHeader, allocatorLock) == managedOffset);
static_assert(offsetof(SegmentHeader, indexLock) == managedOffset + sizeof(Manager::memory_algorithm));
static_assert(sizeof(Lock) == sizeof(LibraryLock));
static_assert(sizeof(Index) == sizeof(LibraryIndex));
static_assert(sizeof(Node) == sizeof(LibraryIndex::value_type));
static_assert(entryHeaderBytes == sizeof(boost::interprocess::ipcdetail::block_header<std::size_t>));
static_assert(offsetof(SegmentHeader, uniqueEntries) + sizeof(Index) == managedOffset + sizeof(Manager));
static_assert(headerBytes == managedOffset + sizeof(Manager) &&
              indexOffset == offsetof(SegmentHeader, indexLock));
static_assert(std::endian::native == std::endian::little);

/// A copy of the bytes of a segment, and what can be read from them.
class Bytes {
public:
    explicit Bytes(std::span<const std::byte> copy) : copy(copy) {}

    template <typename T>
    T at(std::size_t position) const {
        T value;
        std::memcpy(&value, copy.subspan(position, sizeof(T)).data(), sizeof(T));
        return value;
    }

    /// Where the entry lies that a pointer at `position` leads to; nothing when it cannot lie there.
    std::optional<std::size_t> entryFrom(std::size_t position, std::int64_t distance) const {
        const auto size = static_cast<std::int64_t>(copy.size());
        if (distance < -size || distance > size)
            return std::nullopt;
        const std::int64_t target = static_cast<std::int64_t>(position) + distance;
        if (target < static_cast<std::int64_t>(headerBytes) ||
            target > size - static_cast<std::int64_t>(sizeof(Entry)) ||
            target % std::int64_t{alignof(Entry)} != 0)
            return std::nullopt;
        return static_cast<std::size_t>(target);
    }

    std::string_view text(std::size_t position, std::size_t length) const {
        const auto bytes = copy.subspan(position, length);
        return {reinterpret_cast<const char*>(bytes.data()),
                bytes.size()}; // NOLINT(*-reinterpret-cast): bytes as text
    }

    std::size_t size() const { return copy.size(); }

private:
    std::span<const std::byte> copy;
};

/// An entry whose value and name lie within the segment.
struct SoundEntry {
    std::size_t value; ///< Position.
    std::size_t valueBytes;
    std::size_t valueAlignment;
    std::string_view name;
};

std::optional<SoundEntry> soundEntry(const Bytes& bytes, std::size_t position) {
    const auto entry = bytes.at<Entry>(position);
    if (entry.typeAndCharacterBytes != namedOneByteCharacters || !std::has_single_bit(entry.valueAlignment) ||
        entry.valueBytes > bytes.size())
        return std::nullopt;
    const std::size_t alignment = entry.valueAlignment;
    const std::size_t value =
        position + sizeof(Node) + (entryHeaderBytes + alignment - 1) / alignment * alignment;
    const std::size_t name = value + entry.valueBytes;
    if (name + entry.nameLength + 1 > bytes.size())
        return std::nullopt;
    const std::string_view nameAndZero = bytes.text(name, entry.nameLength + std::size_t{1});
    if (nameAndZero.find('\0') != entry.nameLength)
        return std::nullopt;
    return SoundEntry{value, entry.valueBytes, alignment, nameAndZero.substr(0, entry.nameLength)};
}

/// Every entry of the tree; nothing when one of them is not sound or there are not as many as the index says.
std::optional<std::vector<SoundEntry>> entriesOf(const Bytes& bytes, std::size_t indexPosition) {
    const auto index = bytes.at<Index>(indexPosition);
    if (index.entryCount > bytes.size() / sizeof(Entry))
        return std::nullopt;
    std::vector<SoundEntry> entries;
    std::vector<std::size_t> toVisit;
    const auto follow = [&](std::size_t position, std::int64_t distance) {
        if (distance == nullDistance)
            return true;
        const auto target = bytes.entryFrom(position, distance);
        if (target)
            toVisit.push_back(*target);
        return target.has_value();
    };
    if (!follow(indexPosition + offsetof(Index, header) + offsetof(Node, parent),
                index.header.parent & ~colourBit))
        return std::nullopt;
    while (!toVisit.empty()) {
        const std::size_t position = toVisit.back();
        toVisit.pop_back();
        const auto entry = soundEntry(bytes, position);
        if (!entry || entries.size() == index.entryCount) // more than it says: a circle, too
            return std::nullopt;
        entries.push_back(*entry);
        const auto node = bytes.at<Node>(position);
        if (!follow(position + offsetof(Node, left), node.left) ||
            !follow(position + offsetof(Node, right), node.right))
            return std::nullopt;
    }
    if (entries.size() != index.entryCount)
        return std::nullopt;
    return entries;
}

/// A lock that nobody holds looks like a new one.
bool isFree(const Lock& lock) {
    const LibraryLock fresh;
    return std::memcmp(&lock, &fresh, sizeof lock) == 0;
}

bool isSound(const SegmentHeader& header, std::size_t size) {
    return header.state == initialisedState && header.managedBytes == size - managedOffset &&
           header.indexBytes == headerBytes - indexOffset && header.allocatedBytes <= header.managedBytes &&
           isFree(header.indexLock);
}

/// Nothing where a segment of that size does not lie.
std::optional<std::vector<std::byte>> privateCopy(int descriptor) {
    struct stat facts {};
    if (fstat(descriptor, &facts) != 0 || !S_ISREG(facts.st_mode) ||
        facts.st_size != static_cast<off_t>(segmentSize))
        return std::nullopt;
    std::vector<std::byte> copy(segmentSize);
    for (std::size_t done = 0; done < copy.size();) {
        const ssize_t count =
            pread(descriptor, copy.data() + done, copy.size() - done, static_cast<off_t>(done));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return std::nullopt;
        done += static_cast<std::size_t>(count);
    }
    return copy;
}

} // namespace

bool isOfTheUsersOwn(const struct stat& facts, uid_t user) noexcept {
    return (facts.st_uid == user || facts.st_uid == 0) && (facts.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

std::optional<ProvenSegment> proveSegmentCopy(std::span<const std::byte> copy) {
    if (copy.size() != segmentSize)
        return std::nullopt;
    const Bytes bytes(copy);
    if (!isSound(bytes.at<SegmentHeader>(0), bytes.size()))
        return std::nullopt;
    const auto entries = entriesOf(bytes, offsetof(SegmentHeader, namedEntries));
    if (!entries)
        return std::nullopt;
    ProvenSegment proven;
    for (const SoundEntry& entry : *entries) {
        if (entry.name != headRotationName)
            continue;
        if (proven.record || entry.valueBytes != sizeof(HeadRotation::Data) ||
            entry.valueAlignment != alignof(HeadRotation::Data))
            return std::nullopt;
        proven.record = entry.value;
    }
    return proven;
}

std::optional<ProvenSegment> proveSegment(int descriptor) {
    constexpr int lookCount = 20;
    for (int look = 0; look < lookCount; ++look) {
        if (look > 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        const auto copy = privateCopy(descriptor);
        if (!copy)
            continue;
        if (auto proven = proveSegmentCopy(*copy))
            return proven;
    }
    return std::nullopt;
}

} // namespace OrvaneIPC
