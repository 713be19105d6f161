// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CheckFolder.h"

#include "check/CheckError.h"
#include "check/Page.h"
#include "render/Names.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>

namespace orvane::kestrum::check {

namespace {

std::string inQuotes(const std::filesystem::path& path) { return "\"" + path.string() + "\""; }

std::filesystem::path markPath(const std::filesystem::path& folder) { return folder / ".kestrum-check"; }

/// Every file that a check writes, but for page and mark.
std::vector<std::filesystem::path> filesOfACheck(const std::filesystem::path& folder) {
    std::vector<std::string> tracks{downmixName};
    for (const render::Choice& scene : render::sceneChoices().all())
        tracks.push_back(scene.name);
    std::vector<std::filesystem::path> files;
    for (const std::string& track : tracks) {
        const auto sound = renderedFile(folder, track);
        files.insert(files.end(), {sound, std::filesystem::path(sound).replace_extension(".json"),
                                   matchedFile(folder, track)});
    }
    return files;
}

/// What no check has made is somebody's own.
void requireNoFilesOfOthers(const std::filesystem::path& folder) {
    std::error_code ignored;
    if (exists(pagePath(folder), ignored) && !isPage(pagePath(folder)))
        throw CheckError("The folder " + inQuotes(folder) +
                         " holds an index.html that is no mix check: name another folder.");
    if (exists(markPath(folder), ignored) || isPage(pagePath(folder)))
        return;
    for (const auto& file : filesOfACheck(folder))
        if (exists(file, ignored))
            throw CheckError("The file " + inQuotes(file) +
                             " is in the place of a result and no check made it: name another folder.");
}

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
    requireNoFilesOfOthers(folder);
    failure.clear();
    for (const auto& file : {renderedFile(folder, ""), matchedFile(folder, "")})
        if (!failure)
            create_directories(file.parent_path(), failure);
    const bool writable =
        !failure && (std::ofstream(markPath(folder))
                     << "The files of a mix check lie here; another check may write over them.\n"
                     << std::flush)
                        .good();
    if (!writable)
        throw CheckError("Nothing can be written to the folder " + inQuotes(folder) +
                         ": name one of yours on a disk with space.");
}

FolderLock::FolderLock(const std::filesystem::path& folder)
    : descriptor(open(markPath(folder).c_str(), O_RDWR | O_CLOEXEC)) {
    // A file system without locks gives another error, and no protection.
    if (flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK)
        return;
    close(descriptor);
    throw CheckError("Another check is at work in the folder " + inQuotes(folder) +
                     ": wait for its end, or name another folder.");
}

FolderLock::~FolderLock() { close(descriptor); }

std::vector<SceneJob> jobsToRun(const std::vector<SceneJob>& jobs, const std::string& layout,
                                const std::string& sources, bool replace) {
    std::vector<SceneJob> missing;
    for (const SceneJob& job : jobs) {
        const JobResult result = resultOf(job, layout, sources);
        if (result == JobResult::other && !replace)
            throw CheckError(
                "The folder " + inQuotes(job.sound.parent_path().parent_path()) +
                " holds the check of another mix or of an earlier one, in another layout, or with "
                "another plug-in or other data: name another folder, or write over it with "
                "--replace.");
        if (result != JobResult::ready)
            missing.push_back(job);
    }
    return missing;
}

} // namespace orvane::kestrum::check
