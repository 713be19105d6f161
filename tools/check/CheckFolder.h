// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "check/SceneJobs.h"

#include <filesystem>
#include <string>
#include <vector>

namespace orvane::kestrum::check {

/// Where the parts of a check lie: the page, the plug-in's own results, the copies of equal loudness.
std::filesystem::path pagePath(const std::filesystem::path& folder);
std::filesystem::path renderedFile(const std::filesystem::path& folder, const std::string& track);
std::filesystem::path matchedFile(const std::filesystem::path& folder, const std::string& track);

/// Makes the folders, and the file by which they are known as a check's.
/// @throws CheckError when they cannot be written, hold the mix itself, or files in the places of ours that are not ours.
void prepareFolder(const std::filesystem::path& folder, const Mix& mix);

/// Keeps a second check out of a prepared folder as long as it lives. Processes that are begun meanwhile do not inherit it.
class FolderLock {
public:
    /// @throws CheckError when another check holds it.
    explicit FolderLock(const std::filesystem::path& folder);
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;
    ~FolderLock();

private:
    int descriptor;
};

/// @return the jobs whose results are missing or, with `replace`, others. Nothing is removed: a job that is begun takes
///         away the facts of what stands in its place.
/// @param replace whether results of other sources or another layout may be written over.
/// @throws CheckError when there are such results and they may not.
std::vector<SceneJob> jobsToRun(const std::vector<SceneJob>& jobs, const std::string& layout,
                                const std::string& sources, bool replace);

} // namespace orvane::kestrum::check
