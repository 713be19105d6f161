// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/head/ResponseSet.h"

#include "data/DataError.h"
#include "data/sets/WholeFile.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <span>
#include <string>

namespace orvane::kestrum::tools {

namespace {

constexpr std::size_t headerSize = 44;
constexpr std::uint16_t floatTag = 3;
constexpr std::uint16_t integerTag = 1;
constexpr std::uint16_t channelCount = 2;

void put(Bytes& bytes, std::string_view text) {
    for (const char letter : text)
        bytes.push_back(static_cast<std::uint8_t>(letter));
}

std::uint32_t get(std::span<const std::uint8_t> bytes, std::size_t offset, std::size_t count) {
    std::uint32_t value = 0;
    for (std::size_t index = count; index-- > 0;)
        value = (value << 8U) | bytes[offset + index];
    return value;
}

bool has(std::span<const std::uint8_t> bytes, std::size_t offset, std::string_view text) {
    return offset + text.size() <= bytes.size() &&
           std::memcmp(bytes.data() + offset, text.data(), text.size()) == 0;
}

Bytes header(const ResponseFile& file, std::uint32_t dataSize) {
    constexpr std::uint16_t bytesPerSample = 4;
    const auto rate = static_cast<std::uint32_t>(file.sampleRate);
    Bytes bytes;
    put(bytes, "RIFF");
    put32(bytes, dataSize + headerSize - 8);
    put(bytes, "WAVE");
    put(bytes, "fmt ");
    put32(bytes, 16);
    put16(bytes, floatTag);
    put16(bytes, channelCount);
    put32(bytes, rate);
    put32(bytes, rate * channelCount * bytesPerSample);
    put16(bytes, channelCount * bytesPerSample);
    put16(bytes, bytesPerSample * 8);
    put(bytes, "data");
    put32(bytes, dataSize);
    return bytes;
}

[[noreturn]] void refuse(const std::string& reason) { throw DataError(reason); }

/// What is wrong with the header, if anything; the offset of the first sample otherwise.
std::size_t checkedHeader(const ResponseFile& file, std::span<const std::uint8_t> bytes,
                          std::size_t& bytesPerSample) {
    if (bytes.size() < headerSize)
        refuse("it is cut off before its first sample");
    if (!has(bytes, 0, "RIFF") || !has(bytes, 8, "WAVE") || !has(bytes, 12, "fmt "))
        refuse("it is no RIFF/WAVE file whose format comes first");
    if (get(bytes, 22, 2) != channelCount)
        refuse("it has " + std::to_string(get(bytes, 22, 2)) + " channels instead of 2");
    if (get(bytes, 24, 4) != static_cast<std::uint32_t>(file.sampleRate))
        refuse("it is for " + std::to_string(get(bytes, 24, 4)) + " Hz instead of " +
               std::to_string(file.sampleRate));
    const std::uint32_t tag = get(bytes, 20, 2);
    const std::uint32_t bits = get(bytes, 34, 2);
    if (!(tag == floatTag && bits == 32) && !(tag == integerTag && bits == 16))
        refuse("its samples are neither 32-bit float nor 16-bit integer");
    bytesPerSample = bits / 8;
    // The product looks for the first letter d from here on and takes it for the data chunk.
    std::size_t chunk = 36;
    while (chunk < bytes.size() && bytes[chunk] != 'd')
        ++chunk;
    if (!has(bytes, chunk, "data") || chunk + 8 > bytes.size())
        refuse("a letter d in front of its data chunk would mislead the plug-in");
    const std::size_t wanted = responseCount * file.length * channelCount * bytesPerSample;
    const std::size_t announced = get(bytes, chunk + 4, 4);
    if (announced < wanted || bytes.size() - (chunk + 8) < wanted)
        refuse("it holds fewer samples than 2522 responses of " + std::to_string(file.length) +
               " frames need");
    return chunk + 8;
}

} // namespace

void writeResponseSet(const ResponseSet& set, const std::filesystem::path& folder) {
    Bytes bytes = header(
        set.file, static_cast<std::uint32_t>(responseCount * set.file.length * channelCount * sizeof(float)));
    bytes.reserve(bytes.size() + responseCount * set.file.length * channelCount * sizeof(float));
    for (const auto& response : set.responses)
        for (std::size_t frame = 0; frame < set.file.length; ++frame)
            for (const Samples& ear : response)
                put32(bytes, std::bit_cast<std::uint32_t>(static_cast<float>(ear[frame])));
    writeWhole(bytes, folder / set.file.name);
}

ResponseSet readResponseSet(const ResponseFile& file, const std::filesystem::path& folder) {
    std::ifstream stream(folder / file.name, std::ios::binary);
    if (!stream || !std::filesystem::is_regular_file(folder / file.name))
        refuse("it is missing or may not be read");
    const Bytes bytes((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    std::size_t bytesPerSample = 0;
    std::size_t offset = checkedHeader(file, bytes, bytesPerSample);
    ResponseSet set{file, {}};
    set.responses.resize(responseCount);
    for (auto& response : set.responses) {
        for (Samples& ear : response)
            ear.resize(file.length);
        for (std::size_t frame = 0; frame < file.length; ++frame)
            for (Samples& ear : response) {
                const std::uint32_t bits = get(bytes, offset, bytesPerSample);
                ear[frame] = bytesPerSample == 4
                                 ? static_cast<double>(std::bit_cast<float>(bits))
                                 : static_cast<double>(static_cast<std::int16_t>(bits)) / 32768.0;
                offset += bytesPerSample;
            }
    }
    return set;
}

} // namespace orvane::kestrum::tools
