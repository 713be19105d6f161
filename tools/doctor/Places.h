// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace orvane::kestrum::doctor {

inline constexpr const char* bundleName = "Orvane KESTRUM.vst3";

/// Where an installation is looked for. Everything can be put elsewhere, for tests and for images of other systems.
struct Places {
    std::filesystem::path root = "/"; ///< Before every path that is not the user's own.
    bool foreign = false;       ///< The root holds another system: files are looked at, nothing of it is run.
    std::filesystem::path home; ///< The user's folder; empty when there is none.
    std::filesystem::path program; ///< Folder of the running program: a bundle may lie there, too.
    std::filesystem::path runtime; ///< Folder of the tracker's status file.
    std::string segment;           ///< Name of the shared memory; it has no folder.
    uid_t user = 0;                ///< Who is to be able to read and write.

    std::filesystem::path below(const char* absolute) const;
    /// Where hosts look for VST3 plug-ins, the user's own first.
    std::vector<std::filesystem::path> hostFolders() const;
    std::filesystem::path product() const { return below("/opt/Tenmarsh/OrvaneVSTPlugin"); }
    std::filesystem::path data() const { return product() / "data"; }
    std::filesystem::path packagedSet() const { return below("/usr/share/orvane-kestrum/sets/kemar"); }
    std::filesystem::path manual() const;
    bool thisMachine() const { return !foreign; }
};

/// The places of this machine, of this user and of this program.
/// @param root "/", or the folder that holds another system.
Places currentPlaces(const std::filesystem::path& root);

/// Goes along a path part by part, links included, as far as it exists: behind a closed folder nothing can be asked, not even
/// whether it is there.
/// @return the first part, a folder above or the thing itself, that the user may not enter or read; else empty.
std::filesystem::path firstClosed(const std::filesystem::path& path, uid_t user);

/// Text in the double quotes in which sentences show paths and names.
std::string inQuotes(const std::string& text);

/// A path as one word of a shell.
std::string shellWord(const std::filesystem::path& path);

} // namespace orvane::kestrum::doctor
