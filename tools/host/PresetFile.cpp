// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/PresetFile.h"

#include "host/HostError.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string_view>

namespace orvane::kestrum::host {

namespace {

constexpr std::size_t markLength = 4;
constexpr std::size_t classIdLength = 32;
constexpr std::size_t headerLength = markLength + 4 + classIdLength + 8;
constexpr std::size_t entryLength = markLength + 8 + 8;
constexpr std::uint64_t formatVersion = 1;

/// Reads numbers and marks at any offset, never outside the file.
class Reader {
public:
    explicit Reader(std::span<const std::byte> file) : file(file) {}

    std::span<const std::byte> bytes(std::uint64_t offset, std::uint64_t length) const {
        if (offset > file.size() || length > file.size() - offset)
            throw HostError("is a damaged preset (it points outside itself)");
        return file.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(length));
    }
    std::string text(std::uint64_t offset, std::uint64_t length) const {
        const auto range = bytes(offset, length);
        return {reinterpret_cast<const char*>(range.data()), range.size()};
    }
    std::uint64_t number(std::uint64_t offset, std::size_t length) const {
        std::uint64_t value = 0;
        const auto range = bytes(offset, length);
        for (std::size_t index = length; index-- > 0;)
            value = (value << 8) | std::to_integer<std::uint64_t>(range[index]);
        return value;
    }

private:
    std::span<const std::byte> file;
};

class Writer {
public:
    void text(std::string_view characters) {
        std::ranges::transform(characters, std::back_inserter(bytes),
                               [](char character) { return static_cast<std::byte>(character); });
    }
    void number(std::uint64_t value, std::size_t length) {
        for (std::size_t index = 0; index < length; ++index)
            bytes.push_back(static_cast<std::byte>((value >> (8 * index)) & 0xFF));
    }
    void append(std::span<const std::byte> chunk) { bytes.insert(bytes.end(), chunk.begin(), chunk.end()); }

    std::vector<std::byte> bytes;
};

} // namespace

Preset parsePreset(std::span<const std::byte> file) {
    const Reader reader(file);
    if (file.size() < headerLength || reader.text(0, markLength) != "VST3")
        throw HostError("is no .vstpreset file");
    Preset preset;
    preset.classId = reader.text(8, classIdLength);
    const std::uint64_t list = reader.number(8 + classIdLength, 8);
    if (reader.text(list, markLength) != "List")
        throw HostError("is a damaged preset (its list of chunks is missing)");
    const std::uint64_t count = reader.number(list + markLength, 4);
    bool complete = false;
    for (std::uint64_t index = 0; index < count; ++index) {
        const std::uint64_t entry = list + markLength + 4 + index * entryLength;
        const std::string mark = reader.text(entry, markLength);
        const auto chunk = reader.bytes(reader.number(entry + 4, 8), reader.number(entry + 12, 8));
        if (mark == "Comp") {
            preset.state.component.assign(chunk.begin(), chunk.end());
            complete = true;
        } else if (mark == "Cont") {
            preset.state.controller.assign(chunk.begin(), chunk.end());
        }
    }
    if (!complete)
        throw HostError("is a damaged preset (it holds no state of the plug-in)");
    return preset;
}

std::vector<std::byte> formatPreset(const Preset& preset) {
    const bool withController = !preset.state.controller.empty();
    const std::uint64_t componentSize = preset.state.component.size();
    const std::uint64_t controllerSize = preset.state.controller.size();
    Writer writer;
    writer.text("VST3");
    writer.number(formatVersion, 4);
    std::string classId = preset.classId;
    classId.resize(classIdLength, '0');
    writer.text(classId);
    writer.number(headerLength + componentSize + controllerSize, 8);
    writer.append(preset.state.component);
    writer.append(preset.state.controller);
    writer.text("List");
    writer.number(withController ? 2 : 1, 4);
    writer.text("Comp");
    writer.number(headerLength, 8);
    writer.number(componentSize, 8);
    if (withController) {
        writer.text("Cont");
        writer.number(headerLength + componentSize, 8);
        writer.number(controllerSize, 8);
    }
    return writer.bytes;
}

Preset readPreset(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream || std::filesystem::is_directory(path))
        throw HostError("The preset \"" + path.string() +
                        "\" cannot be opened: name a .vstpreset file that you may read.");
    const std::string content{std::istreambuf_iterator<char>(stream), {}};
    try {
        return parsePreset(std::as_bytes(std::span(content)));
    } catch (const HostError& error) {
        throw HostError("\"" + path.string() + "\" " + error.what() +
                        ": name one that a host or kestrum has saved.");
    }
}

void writePreset(const std::filesystem::path& path, const Preset& preset) {
    const auto bytes = formatPreset(preset);
    std::ofstream stream(path, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    stream.flush();
    if (!stream)
        throw HostError("The preset \"" + path.string() +
                        "\" cannot be written: name a file in a folder of yours.");
}

} // namespace orvane::kestrum::host
