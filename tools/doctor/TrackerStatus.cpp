// SPDX-License-Identifier: GPL-3.0-or-later
#include "doctor/TrackerStatus.h"

#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>

namespace orvane::kestrum::doctor {

namespace {

constexpr const char* fileName = "track.json";
constexpr std::size_t largestFile = 4096; ///< Bytes; the tracker keeps below.

/// Closes what it was given.
struct Descriptor {
    int number;
    explicit Descriptor(int opened) : number(opened) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (number >= 0)
            close(number);
    }
};

} // namespace

std::optional<TrackerStatus> readTrackerStatus(const std::filesystem::path& runtimeFolder) {
    // Without waiting: a pipe of that name must not hold us up.
    const Descriptor file(open((runtimeFolder / fileName).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (file.number < 0)
        return std::nullopt;
    TrackerStatus status;
    status.alive = flock(file.number, LOCK_SH | LOCK_NB) != 0;
    std::array<char, largestFile> content{};
    const ssize_t length = read(file.number, content.data(), content.size());
    if (length <= 0)
        return std::nullopt;
    const auto json = nlohmann::json::parse(content.data(), content.data() + length, nullptr, false);
    if (!json.is_object())
        return std::nullopt;
    if (json.contains("pid") && json["pid"].is_number_integer())
        status.pid = json["pid"].get<long>();
    if (json.contains("source") && json["source"].is_string())
        status.source = json["source"].get<std::string>();
    if (json.contains("lastPacket") && json["lastPacket"].is_number())
        status.lastPacket = json["lastPacket"].get<double>();
    return status;
}

} // namespace orvane::kestrum::doctor
