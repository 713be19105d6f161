// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/OscParser.h"

#include "track/TrackError.h"

#include <lo/lo.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <limits>
#include <string>
#include <utility>

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
    return lo_server_dispatch_data(library->server, packet.data(), packet.size()) > 0;
}

} // namespace orvane::kestrum::track
