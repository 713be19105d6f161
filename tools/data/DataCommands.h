// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/HrirBuilder.h"

#include <filesystem>
#include <iosfwd>
#include <string>

namespace CLI {
class App;
}

namespace orvane::kestrum::tools {

/// Where Debian's libmysofa1 puts the measured set that serves when none is named.
inline constexpr const char* defaultSofaFile = "/usr/share/libmysofa/MIT_KEMAR_normal_pinna.sofa";

/// What "kestrum data hrir" was asked for.
struct HrirRequest {
    std::filesystem::path sofa = defaultSofaFile;
    std::filesystem::path out;    ///< Made when missing.
    std::filesystem::path report; ///< Empty for no report.
    bool aboutOnly = false;       ///< Only say what the set would be made of.
    std::string name = {};        ///< Of a complete set among those of the machine, instead of `out`.
    std::filesystem::path headphoneEq = {}; ///< Empty for no headphones in particular; needs a name.
};

/// Adds "data" with its commands to a program. Parsing a command line that names one of them runs it.
/// @throws DataError out of the parse when the work is refused or a check fails.
void addDataCommands(CLI::App& program, std::ostream& out);
void addDataCommands(CLI::App& program); ///< Speaks on the standard output.

/// Adds "hrir", which makes the files of responses from a measured set.
void addHrirCommand(CLI::App& data, std::ostream& out);

/// Adds "check", which says whether a data folder is complete and sound.
void addCheckCommand(CLI::App& data, std::ostream& out);

/// Builds a head's content and writes its three files and about.json, telling what was found out on the way.
/// @throws DataError when the set cannot serve or the folder cannot be written.
BuiltSet makeHead(MeasuredSet measured, const std::string& about, const std::filesystem::path& folder,
                  std::ostream& out);

/// @throws DataError when there is no such folder and none can be made.
void makeFolder(const std::filesystem::path& folder);

/// Makes the three files, and the report where one is wanted.
void runHrir(const HrirRequest& request, std::ostream& out);

/// Says file by file what the folder holds.
/// @throws DataError with the remedy when a file is missing or not sound.
void runCheck(const std::filesystem::path& folder, std::ostream& out);

} // namespace orvane::kestrum::tools
