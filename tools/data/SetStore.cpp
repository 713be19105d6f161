// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/SetStore.h"

#include "data/About.h"
#include "data/DataError.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <utility>

namespace orvane::kestrum::tools {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view stagedPrefix = ".new-";
constexpr std::size_t digitCount = 8;

[[noreturn]] void refuseRoot(const fs::path& root) {
    throw DataError("\"" + root.string() +
                    "\" may not be written by you: run the same again as root, such as with sudo.");
}

/// The name behind which the folder's digits stand, and a number where the same set had to be made twice.
std::string nameOf(const std::string& folder) {
    std::string name = folder;
    const auto digits = [](std::string_view text, std::string_view allowed) {
        return !text.empty() && text.find_first_not_of(allowed) == std::string_view::npos;
    };
    std::size_t dash = name.rfind('-');
    if (dash != std::string::npos && name.size() - dash - 1 < digitCount &&
        digits(std::string_view(name).substr(dash + 1), "0123456789")) {
        const std::size_t before = name.rfind('-', dash - 1);
        if (before != std::string::npos && dash - before - 1 == digitCount)
            dash = before;
    }
    if (dash == std::string::npos || dash == 0)
        return name;
    const std::string_view rest = std::string_view(name).substr(dash + 1);
    const bool whole = rest.size() == digitCount || (rest.size() > digitCount && rest[digitCount] == '-');
    if (whole && digits(rest.substr(0, digitCount), "0123456789abcdef"))
        name.resize(dash);
    return name;
}

std::string textOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

fs::file_time_type madeAt(const fs::path& folder) {
    std::error_code failure;
    const fs::file_time_type time = fs::last_write_time(folder / aboutFileName, failure);
    return failure ? fs::file_time_type::min() : time;
}

bool sameFolder(const fs::path& one, const fs::path& other) {
    std::error_code failure;
    return fs::equivalent(one, other, failure) && !failure;
}

/// Appends the folders of one place.
void collect(std::vector<InstalledSet>& sets, const fs::path& place, bool packaged, const fs::path& link) {
    std::error_code failure;
    std::vector<InstalledSet> found;
    for (fs::directory_iterator entry(place, failure), end; !failure && entry != end;
         entry.increment(failure)) {
        const std::string folder = entry->path().filename().string();
        if (folder.starts_with('.') || !entry->is_directory(failure))
            continue;
        found.push_back(
            {packaged ? folder : nameOf(folder), entry->path(), packaged, sameFolder(link, entry->path())});
    }
    std::ranges::sort(found, {}, &InstalledSet::folder);
    std::ranges::move(found, std::back_inserter(sets));
}

/// Opens a folder and takes its lock, or says that somebody else holds it.
int lockFolder(const fs::path& folder) {
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0 && flock(descriptor, LOCK_EX | LOCK_NB) == 0)
        return descriptor;
    if (descriptor >= 0)
        close(descriptor);
    return -1;
}

/// What makers left behind whose end did not let them clean up; nobody holds its lock.
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

/// Everybody may read, as a host runs as anybody.
void openToAll(const fs::path& folder) {
    using fs::perms;
    const perms readable = perms::owner_read | perms::owner_write | perms::group_read | perms::others_read;
    std::error_code ignored;
    fs::permissions(folder, readable | perms::owner_exec | perms::group_exec | perms::others_exec, ignored);
    for (fs::directory_iterator entry(folder, ignored), end; !ignored && entry != end;
         entry.increment(ignored))
        if (entry->is_regular_file(ignored))
            fs::permissions(entry->path(), readable, ignored);
}

/// Waits until all of a folder is on the disk. Its final name must not get there before its files do.
bool onDisk(const fs::path& folder) {
    const auto synced = [](const fs::path& path) {
        const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        const bool done = descriptor >= 0 && fsync(descriptor) == 0;
        if (descriptor >= 0)
            close(descriptor);
        return done;
    };
    bool all = true;
    for (const auto& entry : fs::directory_iterator(folder))
        all = synced(entry.path()) && all;
    return synced(folder) && all;
}

/// A name that nothing has yet.
fs::path unusedName(const fs::path& wanted) {
    fs::path name = wanted;
    std::error_code ignored;
    for (int number = 2; fs::exists(fs::symlink_status(name, ignored)); ++number)
        name = wanted.string() + "-" + std::to_string(number);
    return name;
}

} // namespace

void requireSetName(std::string_view name) {
    constexpr std::size_t longest = 64;
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-";
    if (name.empty() || name.size() > longest || name.starts_with('.') || name.starts_with('-') ||
        name.find_first_not_of(letters) != std::string_view::npos)
        throw DataError("\"" + std::string(name) +
                        "\" cannot name a set: use letters, digits, dots, dashes and underscores, a letter "
                        "or digit first.");
}

StagedSet::StagedSet(fs::path made) : path(std::move(made)), lock(lockFolder(path)) {}

StagedSet::StagedSet(StagedSet&& other) noexcept
    : path(std::exchange(other.path, fs::path())), lock(std::exchange(other.lock, -1)) {}

StagedSet::~StagedSet() {
    std::error_code ignored;
    if (!path.empty())
        fs::remove_all(path, ignored);
    if (lock >= 0)
        close(lock);
}

SetStore::SetStore(fs::path rootFolder, fs::path packagedFolder)
    : root(std::move(rootFolder)), packaged(std::move(packagedFolder)) {}

SetStore SetStore::ofThisMachine() {
    const auto named = [](const char* variable, const char* usual) {
        const char* const value = std::getenv(variable);
        return fs::path(value != nullptr ? value : usual);
    };
    return {named("KESTRUM_DATA_ROOT", "/opt/Tenmarsh/OrvaneVSTPlugin"),
            named("KESTRUM_PACKAGED_SETS", "/usr/share/orvane-kestrum/sets")};
}

std::vector<InstalledSet> SetStore::sets() const {
    std::vector<InstalledSet> all;
    collect(all, root / "sets", false, link());
    collect(all, packaged, true, link());
    return all;
}

InstalledSet SetStore::find(const std::string& name) const {
    const std::vector<InstalledSet> all = sets();
    std::optional<InstalledSet> best;
    for (const InstalledSet& set : all) {
        if (set.folder.filename() == name && !set.packaged)
            return set;
        if (fs::path(name).is_absolute() && sameFolder(name, set.folder))
            return set;
        if (set.name != name)
            continue;
        const bool latest =
            best && !best->packaged && !set.packaged && madeAt(set.folder) > madeAt(best->folder);
        if (!best || latest)
            best = set;
    }
    if (best)
        return *best;
    std::string known;
    for (const InstalledSet& set : all)
        known += (known.empty() ? "\"" : ", \"") + set.name + "\"";
    throw DataError("There is no set \"" + name + "\" on this machine" +
                    (known.empty() ? "" : " (there is " + known + ")") +
                    ": make one with \"kestrum data hrir --sofa FILE --name NAME\".");
}

std::optional<fs::path> SetStore::linked() const {
    std::error_code failure;
    const fs::path target = fs::read_symlink(link(), failure);
    if (failure)
        return std::nullopt;
    return target.is_absolute() ? target : root / target;
}

StagedSet SetStore::stage() const {
    const fs::path place = root / "sets";
    std::error_code failure;
    fs::create_directories(place, failure);
    if (access(place.c_str(), W_OK) != 0)
        refuseRoot(root);
    removeAbandoned(place);
    std::string folder = (place / (std::string(stagedPrefix) + "XXXXXX")).string();
    if (mkdtemp(folder.data()) == nullptr)
        throw DataError("\"" + place.string() + "\" takes no new set: make room on its disk.");
    return StagedSet(folder);
}

fs::path SetStore::publish(StagedSet staged, const std::string& name) const {
    requireSetName(name);
    const fs::path place = root / "sets";
    const std::string digits = sha256OfText(textOf(staged.folder() / aboutFileName)).substr(0, digitCount);
    openToAll(staged.folder());
    if (!onDisk(staged.folder()))
        throw DataError("The set cannot be put on the disk of \"" + place.string() + "\": make room on it.");
    std::error_code failure;
    fs::path folder = unusedName(place / (name + "-" + digits));
    fs::rename(staged.folder(), folder, failure);
    if (failure)
        throw DataError("The set cannot be put into \"" + place.string() + "\": " + failure.message() + ".");
    staged.path.clear();
    for (const InstalledSet& old : sets())
        if (old.name == name && !old.packaged && !old.used && old.folder != folder)
            fs::remove_all(old.folder, failure);
    return folder;
}

void SetStore::use(const InstalledSet& set) const {
    const StagedSet staged = stage();
    const fs::path target = set.packaged ? set.folder : fs::path("sets") / set.folder.filename();
    std::error_code failure;
    const bool plainFolder = fs::is_directory(fs::symlink_status(link(), failure));
    const fs::path fresh =
        plainFolder ? unusedName(root / "sets" / "plain-folder") : staged.folder() / link().filename();
    fs::create_symlink(target, fresh, failure);
    if (failure)
        throw DataError("No link can be made in \"" + root.string() + "\": " + failure.message() + ".");
    // A folder cannot be replaced by a rename, but it can change places with the link in one step.
    const int result = plainFolder
                           ? renameat2(AT_FDCWD, fresh.c_str(), AT_FDCWD, link().c_str(), RENAME_EXCHANGE)
                           : std::rename(fresh.c_str(), link().c_str());
    if (result == 0)
        return;
    fs::remove(fresh, failure);
    throw DataError("\"" + link().string() + "\" cannot be replaced by a link: move it away by hand first.");
}

} // namespace orvane::kestrum::tools
