// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/RoomFolder.h"

#include "data/DataError.h"
#include "data/rooms/ReverbBuilder.h"
#include "data/sets/About.h"
#include "data/sets/FolderCheck.h"
#include "room/FolderInTheMaking.h"

#include <algorithm>
#include <string>
#include <system_error>

namespace orvane::kestrum::tools {

namespace {

namespace fs = std::filesystem;

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

/// What was made is read back, before anybody can meet it under its name.
void requireSoundResult(const fs::path& folder) {
    for (const FileVerdict& verdict : checkDataFolder(folder))
        if (!verdict.sound)
            throw DataError("Nothing is made, as " + verdict.name + " would not be sound, " +
                            verdict.finding +
                            ": ask for another room or level, and look at the folder that you begin with "
                            "by \"kestrum data check\".");
}

} // namespace

fs::path requireSource(const fs::path& data) {
    if (!fs::is_directory(data))
        throw DataError(
            "\"" + data.string() +
            "\" is no folder: name a data folder with --data; \"kestrum doctor\" names the command that "
            "installs the plug-in's own.");
    fs::path folder = fs::canonical(data);
    for (const FileVerdict& verdict : checkDataFolder(folder))
        if (!verdict.sound)
            throw DataError("\"" + (folder / verdict.name).string() + "\" cannot serve, " + verdict.finding +
                            ": " + verdict.remedy);
    return folder;
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
    requireSoundResult(folder);
}

void writeRoomFolder(const fs::path& data, const fs::path& out, const ReverbEntry& room,
                     const RoomFacts& facts) {
    FolderInTheMaking folder(out);
    fillRoomFolder(data, folder.folder(), room, facts);
    folder.finish();
}

} // namespace orvane::kestrum::tools
