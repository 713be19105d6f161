// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/ResponseSet.h"
#include "data/rooms/ReverbFile.h"

#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace orvane::kestrum::tools {

/// What "kestrum data reverb" was asked for.
struct ReverbRequest {
    std::filesystem::path folder; ///< Holds the responses of the head; the rooms are put beside them.
    bool aboutOnly = false;       ///< Only say what the set would be made of.
};

/// Adds "reverb", which makes the files of rooms for the head of a data folder.
void addReverbCommand(CLI::App& data, std::ostream& out);

/// Makes the rooms for the head of a folder, telling each, and adds them to about.json.
/// @throws DataError as runReverb() does.
void makeRooms(const std::filesystem::path& folder, std::ostream& out);

/// Makes the three files and adds them to the folder's about.json.
/// @throws DataError with the remedy when the folder lacks the head, holds a damaged one, or cannot be written.
void runReverb(const ReverbRequest& request, std::ostream& out);

/// The head's responses at masterSampleRate.
/// @throws DataError with the remedy when they are missing or cannot be relied on.
ResponseSet readMasterHead(const std::filesystem::path& folder);

/// Writes the three files of the rooms, then the folder's about.json, which vouches for no rooms until all are there.
/// @param rooms at masterSampleRate.
/// @param about the new about.json.
/// @throws DataError when the folder cannot be written.
void writeRooms(const std::vector<ReverbEntry>& rooms, const std::string& about,
                const std::filesystem::path& folder);

} // namespace orvane::kestrum::tools
