// SPDX-License-Identifier: GPL-3.0-or-later
#include "headlink/TrackStatus.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvane::kestrum::headlink {

namespace {

constexpr std::size_t largestFile = 4096; ///< Bytes; the tracker keeps below.

bool isOwn(int descriptor) {
    struct stat facts {};
    return fstat(descriptor, &facts) == 0 && S_ISREG(facts.st_mode) && facts.st_uid == getuid();
}

std::string printable(std::string text) {
    std::ranges::replace_if(
        text, [](char letter) { return letter < ' ' || letter > '~'; }, '?');
    return text;
}

} // namespace

double unixTime() {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

std::filesystem::path statusPath() {
    const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
    // By the standard of these variables, one that is no absolute path counts as not set.
    if (runtime != nullptr && std::filesystem::path(runtime).is_absolute())
        return std::filesystem::path(runtime) / "orvane-kestrum" / "track.json";
    return std::filesystem::path("/tmp") / ("orvane-kestrum-" + std::to_string(getuid())) / "track.json";
}

std::optional<TrackStatus> readStatus(const std::filesystem::path& path) {
    // Without waiting: a pipe of that name must not hold us up.
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (descriptor < 0)
        return std::nullopt;
    std::array<char, largestFile> content{};
    const ssize_t count =
        isOwn(descriptor) ? pread(descriptor, content.data(), content.size(), 0) : ssize_t{0};
    const bool alive = flock(descriptor, LOCK_SH | LOCK_NB) != 0;
    close(descriptor);
    if (count <= 0)
        return std::nullopt;
    const auto json = nlohmann::json::parse(content.data(), content.data() + count, nullptr, false);
    if (!json.is_object())
        return std::nullopt;
    try {
        TrackStatus status{.pid = json.at("pid").get<int>(),
                           .source = printable(json.at("source").get<std::string>()),
                           .started = json.at("started").get<double>(),
                           .lastPacket = std::nullopt,
                           .active = json.at("active").get<bool>(),
                           .alive = alive};
        if (const auto& last = json.at("lastPacket"); !last.is_null())
            status.lastPacket = last.get<double>();
        return status;
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

} // namespace orvane::kestrum::headlink
