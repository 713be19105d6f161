// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/OggSerial.h"

#include <array>
#include <string_view>

namespace orvane::kestrum::check {

namespace {

// Places in a page's head.
constexpr std::size_t serialAt = 14, checksumAt = 22, segmentCountAt = 26, segmentsAt = 27;

constexpr std::array<std::uint32_t, 256> checksumTable = [] {
    constexpr std::uint32_t polynomial = 0x04c11db7;
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t byte = 0; byte < table.size(); ++byte) {
        std::uint32_t rest = byte << 24;
        for (int bit = 0; bit < 8; ++bit)
            rest = (rest << 1) ^ ((rest >> 31) != 0 ? polynomial : 0);
        table[byte] = rest;
    }
    return table;
}();

std::uint8_t byteAt(std::string_view text, std::size_t place) {
    return static_cast<std::uint8_t>(text[place]);
}

std::uint32_t checksum(std::string_view page) {
    std::uint32_t sum = 0;
    for (std::size_t place = 0; place < page.size(); ++place)
        sum = (sum << 8) ^ checksumTable[(sum >> 24) ^ byteAt(page, place)];
    return sum;
}

void writeNumber(std::string& stream, std::size_t place, std::uint32_t number) {
    for (std::size_t byte = 0; byte < 4; ++byte)
        stream[place + byte] = static_cast<char>(static_cast<std::uint8_t>(number >> (8 * byte)));
}

/// @return the page's length from `place` on; 0 where no whole page begins.
std::size_t pageLength(std::string_view stream, std::size_t place) {
    const std::string_view page = stream.substr(place);
    if (!page.starts_with("OggS") || page.size() < segmentsAt)
        return 0;
    const std::size_t headLength = segmentsAt + byteAt(page, segmentCountAt);
    if (page.size() < headLength)
        return 0;
    std::size_t length = headLength;
    for (std::size_t segment = segmentsAt; segment < headLength; ++segment)
        length += byteAt(page, segment);
    return length <= page.size() ? length : 0;
}

} // namespace

void setOggSerial(std::string& stream, std::uint32_t serial) {
    std::size_t place = 0;
    while (place < stream.size()) {
        const std::size_t length = pageLength(stream, place);
        if (length == 0)
            return;
        writeNumber(stream, place + serialAt, serial);
        writeNumber(stream, place + checksumAt, 0); // as the checksum is defined
        writeNumber(stream, place + checksumAt, checksum(std::string_view(stream).substr(place, length)));
        place += length;
    }
}

} // namespace orvane::kestrum::check
