// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/Grid.h"
#include "data/rooms/ReverbFile.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace orvane::kestrum::tools {

/// What was found out about one file of a data folder.
struct FileVerdict {
    std::string name;
    bool sound = false;
    std::string finding;   ///< Why not; or a few facts that a sound file shows.
    std::string remedy;    ///< Empty for a sound file.
    bool outdated = false; ///< Not sound only because other methods than this program's made the set.
};

/// A kind of file that a data folder has to hold, with its way of looking at one.
struct FileRule {
    std::string name;
    std::function<FileVerdict(const std::filesystem::path& folder)> check;
};

/// What a complete data folder holds. Further kinds of data join here.
std::vector<FileRule> dataFolderRules();

/// Applies every rule, in order.
std::vector<FileVerdict> checkDataFolder(const std::filesystem::path& folder);

/// Refuses a folder that is not complete and sound.
/// @throws DataError that counts the faults and names the remedy of the first.
void requireSoundFolder(const std::filesystem::path& folder, const std::vector<FileVerdict>& verdicts);

/// Refuses a folder that is damaged; what other methods made will do.
/// @throws DataError as above.
void requireUsableFolder(const std::filesystem::path& folder, const std::vector<FileVerdict>& verdicts);

/// Whether one file of responses can be relied on: there and whole, every sample a finite number, no response
/// silent, the mean level near 0 dB, and each ear louder and earlier for sources on its own side.
FileVerdict checkResponseFile(const ResponseFile& file, const std::filesystem::path& folder);

/// Whether one file of rooms can be relied on: there and whole, every start in its place, every sample a finite number,
/// no room silent at an ear, and every peak where the calibration can have put it.
FileVerdict checkReverbFile(const ReverbFile& file, const std::filesystem::path& folder);

/// Whether the set was made by the methods of this program; outdated when it was made by others.
FileVerdict checkAbout(const std::filesystem::path& folder);

} // namespace orvane::kestrum::tools
