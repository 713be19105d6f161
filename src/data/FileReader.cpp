// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/FileReader.h"

#include "data/DataFileExceptions.h"
#include "data/SoundSamples.h"

#include <array>
#include <bit>
#include <fstream>
#include <stdexcept>

namespace orvane {

namespace {

constexpr std::uint64_t tableStart = 2;
constexpr std::uint64_t bytesPerEntry = 4;
constexpr std::uint64_t bytesPerFrame = 8;

std::uint32_t readOffset(std::ifstream& stream, std::uint32_t entry) {
    std::array<char, bytesPerEntry> bytes{};
    stream.seekg(static_cast<std::streamoff>(tableStart + bytesPerEntry * (entry - 1u)));
    stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!stream)
        throw std::out_of_range("the table ends before the entry");
    return std::bit_cast<std::uint32_t>(bytes);
}

} // namespace

std::vector<float> FileReader::read(const std::string& path, std::uint64_t floatCount,
                                    std::uint32_t tableSize, std::uint32_t entry) const {
    try {
        std::vector<float> samples(floatCount);
        if (isNoFile(path))
            throw wavNotReadableException();
        std::ifstream stream(path, std::ios::binary);
        if (!stream.is_open())
            throw wavNotReadableException();
        if (entry == 0)
            return samples;
        const std::uint64_t offset = readOffset(stream, entry);
        stream.seekg(
            static_cast<std::streamoff>(tableStart + bytesPerEntry * tableSize + bytesPerFrame * offset));
        stream.read(reinterpret_cast<char*>(samples.data()),
                    static_cast<std::streamsize>(floatCount * sizeof(float)));
        // A short read has left zeros in the tail; one that failed is no short one.
        if (stream.bad() || !areSound(samples))
            throw wavNotReadableException();
        return samples;
    } catch (...) {
        throw wavNotReadableException();
    }
}

} // namespace orvane
