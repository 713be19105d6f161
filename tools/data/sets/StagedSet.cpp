// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/sets/StagedSet.h"

#include "data/DataError.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace orvane::kestrum::tools {

namespace {

namespace fs = std::filesystem;

/// Hidden, and nobody's who does not hold its lock.
constexpr std::string_view stagedPrefix = ".new-";

int openFolder(const fs::path& folder) { return open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }

/// Opens a folder and takes its lock, or says that somebody else holds it.
int lockFolder(const fs::path& folder) {
    const int descriptor = openFolder(folder);
    if (descriptor >= 0 && flock(descriptor, LOCK_EX | LOCK_NB) == 0)
        return descriptor;
    if (descriptor >= 0)
        close(descriptor);
    return -1;
}

void removeAbandoned(const fs::path& place) {
    std::error_code ignored;
    std::vector<fs::path> staged;
    for (fs::directory_iterator entry(place, ignored), end; !ignored && entry != end;
         entry.increment(ignored))
        if (entry->path().filename().string().starts_with(stagedPrefix))
            staged.push_back(entry->path());
    for (const fs::path& folder : staged)
        if (const int lock = lockFolder(folder); lock >= 0) {
            fs::remove_all(folder, ignored);
            close(lock);
        }
}

} // namespace

StoreLock::StoreLock(const fs::path& place) : descriptor(openFolder(place)) {
    int result = -1;
    if (descriptor >= 0)
        do
            result = flock(descriptor, LOCK_EX);
        while (result != 0 && errno == EINTR);
    if (result == 0)
        return;
    if (descriptor >= 0)
        close(descriptor);
    throw DataError("\"" + place.string() +
                    "\" cannot be locked against other programs: keep the sets on a disk of this machine.");
}

StoreLock::~StoreLock() { close(descriptor); }

StagedSet::StagedSet(const fs::path& place) {
    const StoreLock others(place); // or they would take the folder for abandoned before it is locked
    removeAbandoned(place);
    std::string folder = (place / (std::string(stagedPrefix) + "XXXXXX")).string();
    if (mkdtemp(folder.data()) == nullptr)
        throw DataError("\"" + place.string() + "\" takes no new set: make room on its disk.");
    lock = lockFolder(folder);
    if (lock < 0) {
        std::error_code ignored;
        fs::remove(folder, ignored);
        throw DataError(
            "\"" + folder +
            "\" cannot be locked against other programs: keep the sets on a disk of this machine.");
    }
    path = folder;
}

StagedSet::StagedSet(StagedSet&& other) noexcept
    : path(std::exchange(other.path, fs::path())), lock(std::exchange(other.lock, -1)) {}

StagedSet::~StagedSet() {
    std::error_code ignored;
    if (!path.empty())
        fs::remove_all(path, ignored);
    if (lock >= 0)
        close(lock);
}

fs::path unusedName(const fs::path& wanted) {
    fs::path name = wanted;
    std::error_code ignored;
    for (int number = 2; fs::exists(fs::symlink_status(name, ignored)); ++number)
        name = wanted.string() + "-" + std::to_string(number);
    return name;
}

fs::path nameForRemoval(const fs::path& place) {
    return unusedName(place / (std::string(stagedPrefix) + "removed"));
}

} // namespace orvane::kestrum::tools
