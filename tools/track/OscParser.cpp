// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/OscParser.h"

#include "track/TrackError.h"

#include <lo/lo.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <cstdlib>

namespace orvane::kestrum::track {

namespace {

template <typename T>
double copied(const lo_arg* argument) {
    T value{};
    std::memcpy(&value, argument, sizeof(value));
    return static_cast<double>(value);
}

/// Read by copying: arguments lie on four bytes only, whatever their type.
double numberOf(char type, const lo_arg* argument) {
    switch (type) {
    case LO_FLOAT:
        return copied<float>(argument);
    case LO_DOUBLE:
        return copied<double>(argument);
    case LO_INT32:
        return copied<std::int32_t>(argument);
    case LO_INT64:
        return copied<std::int64_t>(argument);
    case LO_TRUE:
        return 1;
    case LO_FALSE:
        return 0;
    default:
        return std::numeric_limits<double>::quiet_NaN();
    }
}

std::size_t bigEndian(std::string_view bytes) {
    std::size_t number = 0;
    for (const char byte : bytes)
        number = number << 8 | static_cast<unsigned char>(byte);
    return number;
}

/// The types of a message's arguments; empty where the message breaks off before them.
std::string_view typesOf(std::string_view message) {
    const std::size_t addressLength = message.find('\0');
    if (addressLength == std::string_view::npos)
        return {};
    const std::size_t begin = (addressLength / 4 + 1) * 4; // padded to four bytes
    if (begin >= message.size())
        return {};
    const std::string_view types = message.substr(begin);
    return types.substr(0, types.find('\0'));
}

/// Whether a message of the packet has a blob among its arguments. No tracker sends one, and the library (liblo 0.31) reads
/// the length of a blob that the message breaks off before, beyond the end of its memory.
bool holdsBlob(std::string_view packet) {
    constexpr std::string_view bundleMark("#bundle\0", 8);
    constexpr std::size_t bundleHeader = 16;
    constexpr std::size_t sizeField = 4;
    std::vector<std::string_view> parts{packet};
    while (!parts.empty()) {
        const std::string_view part = parts.back();
        parts.pop_back();
        if (part.starts_with(bundleMark)) {
            for (std::size_t at = bundleHeader; at + sizeField <= part.size();) {
                const std::size_t size = bigEndian(part.substr(at, sizeField));
                at += sizeField;
                parts.push_back(part.substr(at, size));
                if (size > part.size() - at)
                    break;
                at += size;
            }
            continue;
        }
        if (typesOf(part).find(static_cast<char>(LO_BLOB)) != std::string_view::npos)
            return true;
    }
    return false;
}

/// The library's object that dispatches is a server, and its UDP servers listen on every address. A local socket
/// whose name is gone at once listens to nobody.
lo_server makeDeafServer() {
    std::error_code ignored;
    const auto temporary = std::filesystem::temp_directory_path(ignored);
    if (temporary.empty())
        throw TrackError(
            "The folder for temporary files that TMPDIR names does not exist: name another one there.");
    std::string folder = (temporary / "kestrum-osc-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr)
        throw TrackError("No temporary folder can be made in \"" + temporary.string() +
                         "\": make room there, or name another one in TMPDIR.");
    lo_server server =
        lo_server_new_with_proto((folder + "/socket").c_str(), LO_UNIX, [](int, const char*, const char*) {});
    std::filesystem::remove_all(folder, ignored);
    if (server == nullptr)
        throw TrackError("OSC cannot be read: the temporary folder \"" + folder +
                         "\" takes no sockets; name another one in TMPDIR.");
    return server;
}

} // namespace

struct OscParser::Library {
    explicit Library(Handler given) : handler(std::move(given)), server(makeDeafServer()) {
        lo_server_enable_queue(server, 0, 1);
        lo_server_add_method(server, nullptr, nullptr, dispatch, this);
    }
    ~Library() { lo_server_free(server); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    static int dispatch(const char* path, const char* types, lo_arg** arguments, int count, lo_message,
                        void* self) {
        auto& library = *static_cast<Library*>(self);
        library.values.clear();
        for (int index = 0; index < count; ++index)
            library.values.push_back(numberOf(types[index], arguments[index]));
        library.handler(path, library.values);
        return 0;
    }

    Handler handler;
    std::vector<double> values; ///< The present message's.
    lo_server server;
};

OscParser::OscParser(Handler handler) : library(std::make_unique<Library>(std::move(handler))) {}

OscParser::~OscParser() = default;

bool OscParser::parse(std::span<std::byte> packet) {
    if (holdsBlob({reinterpret_cast<const char*>(packet.data()), packet.size()}))
        return false;
    return lo_server_dispatch_data(library->server, packet.data(), packet.size()) > 0;
}

} // namespace orvane::kestrum::track
