// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/IFileReader.h"
#include "support/WaveFile.h"

#include <cstdint>
#include <string>
#include <vector>

namespace test {

/// A container in which frame f holds f + 1 on the left and -(f + 1) on the right, and in which entry k begins
/// at frame 10 k.
inline std::string numberedContainer(std::uint32_t frames) {
    std::string bytes = "??";
    for (std::uint32_t entry = 1; entry <= 60; ++entry)
        bytes += bytesOf(10 * entry);
    for (std::uint32_t frame = 0; frame < frames; ++frame) {
        const auto value = static_cast<float>(frame + 1);
        bytes += bytesOf(value) + bytesOf(-value);
    }
    return bytes;
}

/// Notes what is asked for and gives 1, -1, 2, -2 and so on.
struct RecordingReader final : orvane::IFileReader {
    std::vector<float> read(const std::string& askedPath, std::uint64_t count, std::uint32_t size,
                            std::uint32_t askedEntry) const override {
        path = askedPath;
        floatCount = count;
        tableSize = size;
        entry = askedEntry;
        std::vector<float> samples(count);
        for (std::uint64_t frame = 0; frame < count / 2; ++frame) {
            samples[2 * frame] = static_cast<float>(frame + 1);
            samples[2 * frame + 1] = -samples[2 * frame];
        }
        return samples;
    }

    mutable std::string path;
    mutable std::uint64_t floatCount = 0;
    mutable std::uint32_t tableSize = 0;
    mutable std::uint32_t entry = 0;
};

} // namespace test
