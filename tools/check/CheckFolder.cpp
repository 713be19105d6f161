// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CheckFolder.h"

#include "check/CheckError.h"
#include "check/Page.h"

#include <algorithm>
#include <fstream>

namespace orvane::kestrum::check {

namespace {

std::string inQuotes(const std::filesystem::path& path) { return "\"" + path.string() + "\""; }

} // namespace

std::filesystem::path pagePath(const std::filesystem::path& folder) { return folder / "index.html"; }

std::filesystem::path renderedFile(const std::filesystem::path& folder, const std::string& track) {
    return folder / "rendered" / (track + ".wav");
}

std::filesystem::path matchedFile(const std::filesystem::path& folder, const std::string& track) {
    return folder / "matched" / (track + ".flac");
}

void prepareFolder(const std::filesystem::path& folder, const Mix& mix) {
    std::error_code failure;
    for (const auto& file : {renderedFile(folder, ""), matchedFile(folder, "")})
        if (equivalent(file.parent_path(), mix.path.parent_path(), failure))
            throw CheckError(
                "The mix " + inQuotes(mix.path) +
                " lies among the results of a check, which would write over it: name another folder.");
    if (exists(pagePath(folder), failure) && !isPage(pagePath(folder)))
        throw CheckError("The folder " + inQuotes(folder) +
                         " holds an index.html that is no mix check: name another folder.");
    failure.clear();
    for (const auto& file : {renderedFile(folder, ""), matchedFile(folder, "")})
        if (!failure)
            create_directories(file.parent_path(), failure);
    const std::filesystem::path probe = folder / ".writable";
    const bool writable = !failure && std::ofstream(probe).put(' ').flush().good();
    std::filesystem::remove(probe, failure);
    if (!writable)
        throw CheckError("Nothing can be written to the folder " + inQuotes(folder) +
                         ": name one of yours on a disk with space.");
}

std::vector<SceneJob> jobsToRun(const std::vector<SceneJob>& jobs, const Mix& mix, const std::string& layout,
                                bool replace) {
    std::vector<SceneJob> missing;
    for (const SceneJob& job : jobs) {
        const JobResult result = resultOf(job, mix, layout);
        if (result == JobResult::other && !replace)
            throw CheckError(
                "The folder " + inQuotes(job.sound.parent_path().parent_path()) +
                " holds the check of another mix, of an earlier one, or in another layout: name another "
                "folder, or write over it with --replace.");
        if (result != JobResult::ready)
            missing.push_back(job);
    }
    for (const SceneJob& job : missing) {
        std::filesystem::remove(job.facts);
        std::filesystem::remove(job.sound);
    }
    return missing;
}

} // namespace orvane::kestrum::check
