// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/sets/WholeFile.h"

#include "data/DataError.h"

#include <fstream>
#include <iterator>
#include <string>

namespace orvane::kestrum::tools {

void put16(Bytes& bytes, std::uint16_t value) {
    bytes.push_back(static_cast<std::uint8_t>(value & 0xffU));
    bytes.push_back(static_cast<std::uint8_t>(value >> 8U));
}

void put32(Bytes& bytes, std::uint32_t value) {
    for (unsigned shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<std::uint8_t>((value >> shift) & 0xffU));
}

void writeWhole(const Bytes& bytes, const std::filesystem::path& target) {
    const std::filesystem::path half = target.string() + ".part";
    std::ofstream stream(half, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    std::error_code failure;
    if (stream)
        std::filesystem::rename(half, target, failure);
    if (!stream || failure) {
        std::filesystem::remove(half, failure);
        throw DataError("\"" + target.string() +
                        "\" cannot be written: give a folder that you may write to, with room for " +
                        std::to_string(bytes.size() / 1000000 + 1) + " MB.");
    }
}

void copyWhole(const std::filesystem::path& source, const std::filesystem::path& target) {
    std::ifstream stream(source, std::ios::binary);
    const Bytes bytes((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    if (!stream)
        throw DataError("\"" + source.string() + "\" cannot be read: name a file that you may read.");
    writeWhole(bytes, target);
}

} // namespace orvane::kestrum::tools
