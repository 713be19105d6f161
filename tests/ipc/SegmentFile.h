// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ipc/HeadRotation.h"

#include <boost/interprocess/managed_shared_memory.hpp>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <stdexcept>
#include <string>

namespace test {

/// The segment as a file, as anybody may leave it.
inline const std::filesystem::path segmentFile =
    "/dev/shm/OrvaneSharedMemory"; // spelled out: others have no constants

inline void removeSegment() { std::filesystem::remove_all(segmentFile); }

inline std::string segmentBytes() {
    std::ifstream stream(segmentFile, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

inline void writeSegment(const std::string& bytes) {
    removeSegment();
    std::ofstream stream(segmentFile, std::ios::binary);
    stream << bytes;
    if (!stream.flush())
        throw std::runtime_error("cannot write the segment");
    std::filesystem::permissions(segmentFile, std::filesystem::perms(0644)); // as its library makes it
}

/// What is left of a segment into which `fill` has put objects.
template <typename Fill>
std::string segmentWith(Fill fill, std::size_t size = 65536) {
    removeSegment();
    {
        boost::interprocess::managed_shared_memory segment(boost::interprocess::create_only,
                                                           "OrvaneSharedMemory", size);
        fill(segment);
    }
    std::string bytes = segmentBytes();
    removeSegment();
    return bytes;
}

/// The segment of a server.
inline std::string servedSegment() {
    return segmentWith(
        [](auto& segment) { segment.template construct<OrvaneIPC::HeadRotation::Data>("HeadRotation")(); });
}

inline std::span<const std::byte> asBytes(const std::string& text) { return std::as_bytes(std::span(text)); }

} // namespace test
