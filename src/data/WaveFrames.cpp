// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/WaveFrames.h"

#include "data/DataFileExceptions.h"
#include "data/SoundSamples.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <cstddef>
#include <fstream>
#include <limits>

namespace orvane {

namespace {

static_assert(std::endian::native == std::endian::little, "the data files are little-endian");

/// A read that the file cannot serve ends in the one exception for unreadable files.
template <typename T>
T readAt(std::ifstream& stream, std::uint64_t position) {
    std::array<char, sizeof(T)> bytes{};
    stream.seekg(static_cast<std::streamoff>(position));
    stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!stream)
        throw wavNotReadableException();
    return std::bit_cast<T>(bytes);
}

/// Deliberate: a scan for one letter and no walk over the chunks, so a chunk in front that holds a 'd'
/// misleads it. It ends after a megabyte, since a file may be of any size.
std::uint64_t findDataChunk(std::ifstream& stream) {
    constexpr std::uint64_t firstChunk = 36;
    constexpr std::uint64_t scanEnd = firstChunk + (std::uint64_t{1} << 20);
    stream.seekg(static_cast<std::streamoff>(firstChunk));
    for (std::uint64_t position = firstChunk; position < scanEnd; ++position) {
        const int byte = stream.get();
        if (byte == std::ifstream::traits_type::eof())
            break;
        if (byte == 'd')
            return position;
    }
    throw wavNotReadableException();
}

template <typename Stored>
std::vector<Stored> readSamples(std::ifstream& stream, std::uint64_t position, std::uint64_t count) {
    std::vector<Stored> stored(count);
    stream.seekg(static_cast<std::streamoff>(position));
    stream.read(reinterpret_cast<char*>(stored.data()), static_cast<std::streamsize>(count * sizeof(Stored)));
    if (!stream)
        throw wavNotReadableException();
    return stored;
}

} // namespace

void readWaveFrames(const IIrFile& file, std::vector<float>& samples, std::uint64_t frames,
                    std::uint16_t channels) {
    if (isNoFile(file.path()))
        throw wavNotReadableException();
    std::ifstream stream(file.path(), std::ios::binary);
    if (!stream.good())
        throw sampleRateFileNotFoundException();
    if (!stream.is_open())
        throw wavNotReadableException();
    if (readAt<std::uint16_t>(stream, 22) != channels)
        throw numberOfChannelsMismatchException();
    const auto bits = readAt<std::uint16_t>(stream, 34);
    if (bits < 8)
        throw wavBitWrongException();
    const std::uint64_t dataChunk = findDataChunk(stream);
    const std::int64_t dataSize = readAt<std::int32_t>(stream, dataChunk + 4);
    // Compared in frames first, so that no count of frames is too large for the product.
    if (frames > std::numeric_limits<std::uint32_t>::max())
        throw wavChunckSizeShortException();
    const std::uint64_t count = frames * channels;
    if (dataSize / (bits / 8) < static_cast<std::int64_t>(count))
        throw wavChunckSizeShortException();
    assert(samples.size() >= count);
    const std::uint64_t firstSample = dataChunk + 8;
    if (bits == 32) {
        const std::vector<float> stored = readSamples<float>(stream, firstSample, count);
        std::copy(stored.begin(), stored.end(), samples.begin());
    } else if (bits == 16) {
        const std::vector<std::int16_t> stored = readSamples<std::int16_t>(stream, firstSample, count);
        std::transform(stored.begin(), stored.end(), samples.begin(),
                       [](std::int16_t value) { return static_cast<float>(value) * 3.0517578e-5f; });
    } else {
        throw wavBitWrongException();
    }
}

void zeroStuff(std::vector<float>& samples, std::int32_t fromRate, std::int32_t toRate,
               std::uint16_t channels) {
    if (fromRate <= 0 || toRate <= fromRate || channels == 0)
        return;
    const std::size_t group = static_cast<std::size_t>(toRate / fromRate) * channels;
    // From the last group to the second, so that no frame is overwritten before it is moved.
    for (std::size_t g = samples.size(); g >= 2 * group;) {
        g -= group;
        std::copy_n(samples.data() + g / group * channels, channels, samples.data() + g);
        std::fill_n(samples.data() + (g - group + channels), group - channels, 0.0f);
    }
}

} // namespace orvane
