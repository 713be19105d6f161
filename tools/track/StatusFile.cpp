// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/StatusFile.h"

#include "track/TrackError.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvane::kestrum::track {

namespace {

constexpr std::size_t contentLength = 1024;

/// Makes the folder, and refuses one that belongs to somebody else: among the temporary files anyone may make it first.
void requireOwnFolder(const std::filesystem::path& folder) {
    struct stat facts {};
    if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST)
        throw TrackError("The folder \"" + folder.string() +
                         "\" for the tracker's status cannot be made: name another one in XDG_RUNTIME_DIR.");
    if (lstat(folder.c_str(), &facts) != 0 || !S_ISDIR(facts.st_mode) || facts.st_uid != getuid())
        throw TrackError("The folder \"" + folder.string() +
                         "\" belongs to somebody else: name another one in XDG_RUNTIME_DIR.");
}

bool isLinked(int descriptor) {
    struct stat facts {};
    return fstat(descriptor, &facts) == 0 && facts.st_nlink > 0;
}

std::string ageOf(const TrackStatus& status) {
    if (!status.lastPacket)
        return "no packet so far";
    const double seconds = std::max(0.0, unixTime() - *status.lastPacket);
    return "last packet " + std::to_string(std::lround(seconds)) + " s ago";
}

std::string refusal(const std::filesystem::path& path) {
    const auto status = readStatus(path);
    if (!status || status->pid == 0)
        return "Another kestrum track drives the link already: end it first.";
    return "Another kestrum track drives the link already, process " + std::to_string(status->pid) + " (" +
           (status->source.empty() ? "" : status->source + ", ") + ageOf(*status) +
           "): end it first, with q in its terminal or with kill " + std::to_string(status->pid) + ".";
}

} // namespace

StatusFile::StatusFile(const std::filesystem::path& givenPath) : path(givenPath) {
    requireOwnFolder(path.parent_path());
    // A reader takes the lock for a moment, too, so one refusal proves nothing; and a tracker that just ends may have
    // removed the file between opening and locking it.
    for (int attempt = 0; attempt < 20; ++attempt) {
        descriptor = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
        if (descriptor < 0)
            throw TrackError("The tracker's status cannot be written to \"" + path.string() +
                             "\": name another folder in XDG_RUNTIME_DIR.");
        if (flock(descriptor, LOCK_EX | LOCK_NB) == 0 && isLinked(descriptor))
            return;
        close(descriptor);
        usleep(2000);
    }
    throw TrackError(refusal(path));
}

StatusFile::~StatusFile() {
    if (written)
        unlink(path.c_str());
    close(descriptor);
}

void StatusFile::write(const TrackStatus& status) {
    nlohmann::ordered_json json;
    json["pid"] = status.pid;
    json["source"] = status.source;
    json["started"] = status.started;
    json["lastPacket"] =
        status.lastPacket ? nlohmann::ordered_json(*status.lastPacket) : nlohmann::ordered_json(nullptr);
    json["active"] = status.active;
    std::string content = json.dump(-1, ' ', true, nlohmann::ordered_json::error_handler_t::replace);
    content.resize(contentLength, ' ');
    content.back() = '\n';
    [[maybe_unused]] const ssize_t count = pwrite(descriptor, content.data(), content.size(), 0);
    written = true;
}

} // namespace orvane::kestrum::track
