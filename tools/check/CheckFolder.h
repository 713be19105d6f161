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

/// Makes the folders.
/// @throws CheckError when they cannot be written, hold a page that is none of ours, or the mix itself.
void prepareFolder(const std::filesystem::path& folder, const Mix& mix);

/// @return the jobs whose results are missing; what stands in their place is removed, so that a command that is stopped
///         leaves nothing that looks whole.
/// @param replace whether results of another mix may be written over.
/// @throws CheckError when there are such results and they may not.
std::vector<SceneJob> jobsToRun(const std::vector<SceneJob>& jobs, const Mix& mix, const std::string& layout,
                                bool replace);

} // namespace orvane::kestrum::check
