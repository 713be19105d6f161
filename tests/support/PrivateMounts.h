// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>

namespace test {

/// Gives this thread, and all threads and processes that it makes from then on, mounts of their own: what is laid over a folder
/// is seen by them alone and gone with the last of them. As root, or where the system gives users namespaces of their own.
///
/// Thread  the only one of its process, unless root.
/// @throws std::system_error where the system does not allow it.
void enterPrivateMounts();

/// Lays an empty file system over a folder. Within private mounts only.
/// @param options of the tmpfs: "size=1m", "mode=0555".
void coverFolder(const std::filesystem::path& folder, const std::string& options = "");

/// Takes away what was last laid over a folder.
void uncoverFolder(const std::filesystem::path& folder);

/// Makes every file system read-only.
void makeDiskReadOnly();

} // namespace test
