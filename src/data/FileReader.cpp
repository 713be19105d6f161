// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/FileReader.h"

#include "data/DataFileExceptions.h"

#include <bit>
#include <fstream>

namespace orvane {

static_assert(std::endian::native == std::endian::little, "the samples are taken as they lie in the file");

namespace {

constexpr std::int64_t tableStart = 2; ///< Bytes before the table.
constexpr std::int64_t entrySize = 4;  ///< Bytes of one table entry.
constexpr std::int64_t frameSize = 8;  ///< Bytes of one stereo frame.

std::vector<float> readResponse(const std::string& path, std::uint64_t floatCount, std::int64_t tableSize,
                                std::int64_t entry) {
    std::ifstream file(path, std::ios::binary);
    if (!file.is_open() || entry < 1)
        throw wavNotReadableException();
    std::uint32_t startFrame = 0;
    file.seekg(tableStart + (entry - 1) * entrySize);
    if (!file.read(reinterpret_cast<char*>(&startFrame), sizeof startFrame))
        throw wavNotReadableException();

    // What the file holds bounds the read, not the memory: the caller's count is what it will play.
    std::vector<float> samples(floatCount);
    file.seekg(tableStart + tableSize * entrySize + std::int64_t{startFrame} * frameSize);
    file.read(reinterpret_cast<char*>(samples.data()),
              static_cast<std::streamsize>(floatCount * sizeof(float)));
    // A sample of which only some bytes were there is no sample: what is not whole stays silent.
    const auto whole = static_cast<std::uint64_t>(file.gcount()) / sizeof(float);
    if (whole < floatCount)
        samples[whole] = 0.0f;
    return samples;
}

} // namespace

std::vector<float> FileReader::read(const std::string& path, std::uint64_t floatCount,
                                    std::uint32_t tableSize, std::uint32_t entry) const {
    try {
        return readResponse(path, floatCount, tableSize, entry);
    } catch (...) {
        throw wavNotReadableException();
    }
}

} // namespace orvane
