// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/WaveFrames.h"

#include "data/DataFileExceptions.h"
#include "data/IIrFile.h"

#include <bit>
#include <cassert>
#include <fstream>
#include <limits>

namespace orvane {

static_assert(std::endian::native == std::endian::little,
              "fields and samples are taken as they lie in the file");

namespace {

constexpr std::int64_t channelsOffset = 22;
constexpr std::int64_t bitsOffset = 34;
constexpr std::int64_t chunksOffset = 36; ///< Where the search for the data chunk begins.

template <typename Field>
Field readField(std::ifstream& file, std::int64_t offset) {
    Field field{};
    file.seekg(offset);
    if (!file.read(reinterpret_cast<char*>(&field), sizeof field))
        throw wavNotReadableException();
    return field;
}

/// Byte offset of the first 'd' at or after the chunks' begin.
std::int64_t findDataChunk(std::ifstream& file) {
    file.seekg(chunksOffset);
    for (std::int64_t offset = chunksOffset;; ++offset) {
        const int byte = file.get();
        if (byte == 'd')
            return offset;
        if (byte == std::ifstream::traits_type::eof())
            throw wavNotReadableException();
    }
}

/// @throws wavChunckSizeShortException when the file ends before `count` elements.
template <typename Sample>
void readSamples(std::ifstream& file, Sample* samples, std::uint64_t count) {
    if (!file.read(reinterpret_cast<char*>(samples), static_cast<std::streamsize>(count * sizeof(Sample))))
        throw wavChunckSizeShortException();
}

} // namespace

void readWaveFrames(const IIrFile& irFile, std::vector<float>& samples, std::uint64_t frames,
                    std::uint16_t channels) {
    std::ifstream file(irFile.path(), std::ios::binary);
    if (!file.good())
        throw sampleRateFileNotFoundException();
    if (!file.is_open())
        throw wavNotReadableException();

    if (readField<std::uint16_t>(file, channelsOffset) != channels)
        throw numberOfChannelsMismatchException();
    const auto bits = readField<std::uint16_t>(file, bitsOffset);
    const std::int64_t chunk = findDataChunk(file);
    const std::int64_t dataSize = readField<std::int32_t>(file, chunk + 4);

    // A width below one byte, like any other that is not served, has no sample count to compare.
    const std::int64_t sampleBytes = bits / 8;
    if (sampleBytes == 0)
        throw wavBitWrongException();
    constexpr auto limit = static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max());
    if (channels != 0 && frames > limit / channels) // more than any chunk's size field can claim
        throw wavChunckSizeShortException();
    const std::uint64_t count = channels * frames;
    if (dataSize / sampleBytes < static_cast<std::int64_t>(count))
        throw wavChunckSizeShortException();
    assert(samples.size() >= count);

    file.seekg(chunk + 8);
    if (bits == 32) {
        readSamples(file, samples.data(), count);
    } else if (bits == 16) {
        std::vector<std::int16_t> integers(count);
        readSamples(file, integers.data(), count);
        for (std::uint64_t index = 0; index < count; ++index)
            samples[index] = static_cast<float>(integers[index]) * 3.0517578e-5f; // 1 / 32768
    } else {
        throw wavBitWrongException();
    }
}

} // namespace orvane
