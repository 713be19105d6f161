// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "room/OwnRoom.h"

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace orvane::kestrum::tools {

/// A data folder that a new one can be made of, looked at before any work is done.
/// @return the folder itself, whichever links lead to it: who goes on with it does not meet another set when the link is
///         changed meanwhile.
/// @throws DataError with the remedy when `data` is missing or not sound.
std::filesystem::path requireSource(const std::filesystem::path& data);

/// A place for a new folder.
/// @throws DataError when there is something already.
void requireFree(const std::filesystem::path& out);

/// What about.json is to say about a room: names and values.
using RoomFacts = std::vector<std::pair<std::string, std::string>>;

/// Fills an empty folder: a copy of every file of another, one room's response replaced at all three rates.
/// @param room at masterSampleRate, at its level, with the headphones that the other folder has.
/// @throws DataError when the folder cannot be written, or what is made of this room would not be sound.
void fillRoomFolder(const std::filesystem::path& data, const std::filesystem::path& folder,
                    const ReverbEntry& room, const RoomFacts& facts);

/// Makes such a folder, beside its place, and renames it, so that half a folder is never met.
/// @throws DataError as above; nothing is left of it then, nor when the program is ended meanwhile.
void writeRoomFolder(const std::filesystem::path& data, const std::filesystem::path& out,
                     const ReverbEntry& room, const RoomFacts& facts);

} // namespace orvane::kestrum::tools
