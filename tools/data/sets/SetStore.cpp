// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/sets/SetStore.h"

#include "data/DataError.h"
#include "data/sets/About.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <system_error>
#include <utility>

namespace orvane::kestrum::tools {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t digitCount = 8;

[[noreturn]] void refuseRoot(const fs::path& root) {
    if (geteuid() == 0)
        throw DataError("\"" + root.string() +
                        "\" cannot be written, not even by root: let its disk be mounted for writing.");
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
    std::error_code gone; // others may remove sets meanwhile
    std::vector<InstalledSet> found;
    for (fs::directory_iterator entry(place, failure), end; !failure && entry != end;
         entry.increment(failure)) {
        const std::string folder = entry->path().filename().string();
        if (folder.starts_with('.') || !entry->is_directory(gone))
            continue;
        found.push_back(
            {packaged ? folder : nameOf(folder), entry->path(), packaged, sameFolder(link, entry->path())});
    }
    std::ranges::sort(found, {}, &InstalledSet::folder);
    std::ranges::move(found, std::back_inserter(sets));
}

/// A time behind those of all sets given, even where the clock was put back.
fs::file_time_type afterAll(const std::vector<InstalledSet>& sets) {
    fs::file_time_type time = fs::file_time_type::clock::now();
    for (const InstalledSet& set : sets)
        time = std::max(time, madeAt(set.folder) + std::chrono::milliseconds(1));
    return time;
}

/// Makes a folder and those above it that are missing, each for everybody to read.
void makeOpenFolders(const fs::path& folder) {
    std::error_code ignored;
    if (folder.empty() || fs::exists(folder, ignored))
        return;
    makeOpenFolders(folder.parent_path());
    constexpr fs::perms open = fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec |
                               fs::perms::others_read | fs::perms::others_exec;
    if (fs::create_directory(folder, ignored))
        fs::permissions(folder, open, ignored);
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

SetKind kindOf(const fs::path& folder) { return ownRooms(folder).empty() ? SetKind::head : SetKind::ownRoom; }

/// Where a plain folder is after it has changed places with the link, and before it is listed.
fs::path unsettled(const fs::path& place) { return place / ".plain-folder"; }

/// Lets a plain folder be listed that has changed places with the link, or takes a link away that was made for it and never
/// got there, as its maker was killed.
void settlePlainFolder(const fs::path& place) {
    std::error_code ignored;
    const fs::file_status there = fs::symlink_status(unsettled(place), ignored);
    if (fs::is_symlink(there))
        fs::remove(unsettled(place), ignored);
    else if (fs::exists(there))
        fs::rename(unsettled(place), unusedName(place / "plain-folder"), ignored);
}

/// Replaces the link by a rename, or lets a fresh one change places with a plain folder, in one step.
bool putLink(const fs::path& target, const fs::path& link, const fs::path& fresh, bool exchange) {
    std::error_code failure;
    fs::create_symlink(target, fresh, failure);
    if (failure)
        throw DataError("No link can be made in \"" + link.parent_path().string() +
                        "\": " + failure.message() + ".");
    if (exchange)
        return renameat2(AT_FDCWD, fresh.c_str(), AT_FDCWD, link.c_str(), RENAME_EXCHANGE) == 0;
    return std::rename(fresh.c_str(), link.c_str()) == 0;
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
    collect(all, place(), false, link());
    collect(all, packaged, true, link());
    return all;
}

std::vector<InstalledSet> SetStore::madeHere(const std::string& name) const {
    std::vector<InstalledSet> made = sets();
    std::erase_if(made, [&](const InstalledSet& set) { return set.packaged || set.name != name; });
    std::ranges::stable_sort(made, std::ranges::greater(),
                             [](const InstalledSet& set) { return madeAt(set.folder); });
    return made;
}

InstalledSet SetStore::find(const std::string& name) const {
    const std::vector<InstalledSet> all = sets();
    for (const InstalledSet& set : all)
        if ((!set.packaged && set.folder.filename() == name) ||
            (fs::path(name).is_absolute() && sameFolder(name, set.folder)))
            return set;
    if (const std::vector<InstalledSet> made = madeHere(name); !made.empty())
        return made.front();
    for (const InstalledSet& set : all)
        if (set.name == name)
            return set;
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

void SetStore::requireKind(const std::string& name, SetKind kind) const {
    const std::vector<InstalledSet> made = madeHere(name);
    if (made.empty() || kindOf(made.front().folder) == kind)
        return;
    throw DataError("The name \"" + name + "\" belongs to a set " +
                    (kind == SetKind::head ? "with" : "without") +
                    " a room of one's own, which stays as it is: choose another with --name.");
}

StagedSet SetStore::stage() const {
    makeOpenFolders(place());
    if (access(place().c_str(), W_OK) != 0)
        refuseRoot(root);
    return StagedSet(place());
}

fs::path SetStore::publish(StagedSet staged, const std::string& name) const {
    requireSetName(name);
    const std::string digits = sha256OfText(textOf(staged.folder() / aboutFileName)).substr(0, digitCount);
    openToAll(staged.folder());
    if (!onDisk(staged.folder()))
        throw DataError("The set cannot be put on the disk of \"" + place().string() +
                        "\": make room on it.");
    const StoreLock others(place());
    requireKind(name, kindOf(staged.folder()));
    std::error_code failure;
    fs::last_write_time(staged.folder() / aboutFileName, afterAll(madeHere(name)), failure);
    fs::path folder = unusedName(place() / (name + "-" + digits));
    fs::rename(staged.folder(), folder, failure);
    if (failure)
        throw DataError("The set cannot be put into \"" + place().string() + "\": " + failure.message() +
                        ".");
    staged.release();
    return folder;
}

void SetStore::makeLatest(const InstalledSet& set) const {
    const StoreLock others(place());
    std::error_code failure;
    fs::last_write_time(set.folder / aboutFileName, afterAll(madeHere(set.name)), failure);
    if (failure == std::errc::no_such_file_or_directory)
        throw DataError("The set \"" + set.folder.string() + "\" has just been removed: run the same again.");
    if (failure)
        refuseRoot(root);
}

std::vector<InstalledSet> SetStore::removeOlder(const std::string& name) const {
    constexpr std::ptrdiff_t kept = 2;
    const StoreLock others(place());
    std::vector<InstalledSet> old = madeHere(name);
    old.erase(old.begin(), old.begin() + std::min(kept, std::ssize(old)));
    std::erase_if(old,
                  [](const InstalledSet& set) { return set.used || kindOf(set.folder) == SetKind::ownRoom; });
    std::error_code failure;
    for (const InstalledSet& set : old) {
        // What is half removed must not look like a set.
        const fs::path hidden = nameForRemoval(place());
        fs::rename(set.folder, hidden, failure);
        if (!failure)
            fs::remove_all(hidden, failure);
    }
    std::erase_if(old, [&](const InstalledSet& set) { return fs::exists(set.folder, failure); });
    return old;
}

void SetStore::use(const InstalledSet& set) const {
    const StagedSet staged = stage();
    const StoreLock others(place());
    settlePlainFolder(place());
    std::error_code failure;
    if (!fs::is_directory(set.folder, failure))
        throw DataError("The set \"" + set.folder.string() + "\" has just been removed: choose another.");
    const fs::file_status before = fs::symlink_status(link(), failure);
    if (fs::exists(before) && !fs::is_symlink(before) && !fs::is_directory(before))
        throw DataError(
            "\"" + link().string() +
            "\" is neither a link nor a folder, so it is not replaced: move it away by hand first.");
    const bool plainFolder = fs::is_directory(before);
    const fs::path target = set.packaged ? set.folder : fs::path("sets") / set.folder.filename();
    const bool put = putLink(
        target, link(), plainFolder ? unsettled(place()) : staged.folder() / link().filename(), plainFolder);
    settlePlainFolder(place());
    if (!put)
        throw DataError("\"" + link().string() +
                        "\" cannot be replaced by a link: move it away by hand first.");
}

} // namespace orvane::kestrum::tools
