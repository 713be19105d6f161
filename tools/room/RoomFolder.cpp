// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/RoomFolder.h"

#include "data/About.h"
#include "data/DataError.h"
#include "data/FolderCheck.h"
#include "data/ReverbBuilder.h"

#include <algorithm>
#include <cstdlib>
#include <system_error>

namespace orvane::kestrum::tools {

namespace {

namespace fs = std::filesystem;

/// A folder beside its place, gone with all its files unless it is put there.
class FolderInTheMaking {
public:
    explicit FolderInTheMaking(const fs::path& place) : target(fs::absolute(place).lexically_normal()) {
        if (!target.has_filename()) // "my-room/"
            target = target.parent_path();
        std::error_code failure;
        fs::create_directories(target.parent_path(), failure);
        std::string name = target.string() + ".part-XXXXXX";
        if (failure || mkdtemp(name.data()) == nullptr)
            refuse();
        path = name;
        fs::permissions(path, fs::perms(0755), failure); // as any new folder: the plug-in's host reads it
    }
    ~FolderInTheMaking() {
        std::error_code ignored;
        if (!path.empty())
            fs::remove_all(path, ignored);
    }
    FolderInTheMaking(const FolderInTheMaking&) = delete;
    FolderInTheMaking& operator=(const FolderInTheMaking&) = delete;

    void finish() {
        std::error_code failure;
        fs::rename(path, target, failure); // an empty folder gives way
        if (failure)
            refuse();
        path.clear();
    }

    [[noreturn]] void refuse() const {
        throw DataError("The folder \"" + target.string() +
                        "\" cannot be made: name one where you may write, with room for 70 MB.");
    }

    fs::path path;

private:
    fs::path target;
};

void copyFiles(const fs::path& data, const fs::path& folder) {
    for (const fs::directory_entry& file : fs::directory_iterator(data)) {
        std::error_code failure;
        if (file.is_regular_file())
            fs::copy_file(file.path(), folder / file.path().filename(), failure);
        if (failure)
            throw DataError("\"" + (folder / file.path().filename()).string() +
                            "\" cannot be written: name a folder where you may write, with room for 70 MB.");
    }
}

} // namespace

void requireSource(const fs::path& data) {
    if (!fs::is_directory(data))
        throw DataError(
            "\"" + data.string() +
            "\" is no folder: name a data folder with --data, or make one with scripts/install-data.");
    for (const FileVerdict& verdict : checkDataFolder(data))
        if (!verdict.sound)
            throw DataError("\"" + (data / verdict.name).string() + "\" cannot serve, " + verdict.finding +
                            ": " + verdict.remedy);
}

void requireFree(const fs::path& out) {
    std::error_code failure;
    const bool free =
        !fs::exists(out, failure) || (fs::is_directory(out, failure) && fs::is_empty(out, failure));
    if (!free)
        throw DataError("\"" + out.string() + "\" holds something already: name a new folder.");
}

void fillRoomFolder(const fs::path& data, const fs::path& folder, const ReverbEntry& room,
                    const RoomFacts& facts) {
    const std::string about = aboutWithOwnRoom(data, room.room, facts);
    copyFiles(data, folder);
    for (const ReverbFile& file : reverbFiles) {
        ReverbSet set = readReverbSet(file, data);
        const ReverbEntry own = reverbSetFor(file, {room}).entries.front();
        *std::ranges::find(set.entries, room.room, &ReverbEntry::room) = own;
        writeReverbSet(set, folder);
    }
    writeAbout(about, folder);
}

void writeRoomFolder(const fs::path& data, const fs::path& out, const ReverbEntry& room,
                     const RoomFacts& facts) {
    FolderInTheMaking folder(out);
    fillRoomFolder(data, folder.path, room, facts);
    folder.finish();
}

} // namespace orvane::kestrum::tools
