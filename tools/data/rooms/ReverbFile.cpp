// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/rooms/ReverbFile.h"

#include "data/DataError.h"
#include "data/sets/WholeFile.h"
#include "room/ReverbRooms.h"

#include <algorithm>
#include <bit>
#include <fstream>
#include <iterator>
#include <string>

namespace orvane::kestrum::tools {

namespace {

constexpr std::size_t markSize = 2; ///< Bytes before the table, which nobody reads.
constexpr std::size_t offsetSize = 4;
constexpr std::size_t frameSize = 8;
constexpr std::size_t framesStart = markSize + offsetSize * reverbTableSize;

/// Where each entry starts, in frames; unused entries start at the silent frame 0.
std::array<std::size_t, reverbTableSize> entryStarts(const ReverbFile& file) {
    std::array<std::size_t, reverbTableSize> lengths{};
    for (const RoomDescription& room : roomDescriptions())
        lengths[entryOf(room) - 1] = frameCountAt(room, file.sampleRate);
    std::array<std::size_t, reverbTableSize> starts{};
    std::size_t next = 1;
    for (std::size_t index = 0; index < reverbTableSize; ++index)
        if (lengths[index] > 0) {
            starts[index] = next;
            next += lengths[index];
        }
    return starts;
}

std::uint32_t get32(const Bytes& bytes, std::size_t offset) {
    std::uint32_t value = 0;
    for (std::size_t index = offsetSize; index-- > 0;)
        value = (value << 8U) | bytes[offset + index];
    return value;
}

float getFloat(const Bytes& bytes, std::size_t offset) { return std::bit_cast<float>(get32(bytes, offset)); }

void setFloat(Bytes& bytes, std::size_t offset, double value) {
    const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(value));
    for (std::size_t index = 0; index < offsetSize; ++index)
        bytes[offset + index] = static_cast<std::uint8_t>((bits >> (8 * index)) & 0xffU);
}

/// Every entry where the plug-in's own table of lengths puts it, and silence where the unused ones lead.
void requireStarts(const Bytes& bytes, const std::array<std::size_t, reverbTableSize>& starts) {
    for (std::size_t index = 0; index < starts.size(); ++index) {
        const std::size_t start = get32(bytes, markSize + offsetSize * index);
        if (start != starts[index])
            throw DataError("entry " + std::to_string(index + 1) + " starts at frame " +
                            std::to_string(start) + " instead of " + std::to_string(starts[index]));
    }
    for (std::size_t ear = 0; ear < 2; ++ear)
        if (getFloat(bytes, framesStart + sizeof(float) * ear) != 0)
            throw DataError("the frame that its unused entries share is not silent");
}

} // namespace

std::uint64_t reverbFileSize(const ReverbFile& file) {
    std::uint64_t frames = 1;
    for (const RoomDescription& room : roomDescriptions())
        frames += frameCountAt(room, file.sampleRate);
    return framesStart + frameSize * frames;
}

void writeReverbSet(const ReverbSet& set, const std::filesystem::path& folder) {
    const auto starts = entryStarts(set.file);
    Bytes bytes;
    put16(bytes, 0);
    for (const std::size_t start : starts)
        put32(bytes, static_cast<std::uint32_t>(start));
    bytes.resize(reverbFileSize(set.file));
    for (const ReverbEntry& entry : set.entries) {
        const std::size_t start = starts[entryOf(roomDescription(entry.room)) - 1];
        for (std::size_t ear = 0; ear < 2; ++ear)
            for (std::size_t frame = 0; frame < entry.ears[ear].size(); ++frame)
                setFloat(bytes, framesStart + frameSize * (start + frame) + sizeof(float) * ear,
                         entry.ears[ear][frame]);
    }
    writeWhole(bytes, folder / set.file.name);
}

ReverbSet readReverbSet(const ReverbFile& file, const std::filesystem::path& folder) {
    std::ifstream stream(folder / file.name, std::ios::binary);
    if (!stream || !std::filesystem::is_regular_file(folder / file.name))
        throw DataError("it is missing or may not be read");
    const Bytes bytes((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    if (bytes.size() != reverbFileSize(file))
        throw DataError("it has " + std::to_string(bytes.size()) + " bytes instead of " +
                        std::to_string(reverbFileSize(file)));
    const auto starts = entryStarts(file);
    requireStarts(bytes, starts);
    ReverbSet set{file, {}};
    for (const RoomDescription& room : roomDescriptions()) {
        const std::size_t start = starts[entryOf(room) - 1];
        const std::size_t length = frameCountAt(room, file.sampleRate);
        ReverbEntry entry{room.room, {Samples(length), Samples(length)}};
        for (std::size_t ear = 0; ear < 2; ++ear)
            for (std::size_t frame = 0; frame < length; ++frame)
                entry.ears[ear][frame] =
                    getFloat(bytes, framesStart + frameSize * (start + frame) + sizeof(float) * ear);
        set.entries.push_back(std::move(entry));
    }
    return set;
}

} // namespace orvane::kestrum::tools
