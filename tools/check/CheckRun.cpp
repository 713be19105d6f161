// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CheckRun.h"

#include "check/CheckError.h"
#include "check/CheckFolder.h"
#include "check/Downmix.h"
#include "check/LayoutChoice.h"
#include "check/LoudnessMatch.h"
#include "check/MatchedCopy.h"
#include "check/Page.h"
#include "check/ProgressTable.h"
#include "check/StagedFiles.h"
#include "check/Tasks.h"
#include "data/OnAllCores.h"
#include "parameters/core/MenuPresentation.h"
#include "render/AudioStreams.h"
#include "render/DataFolder.h"
#include "render/RenderCommand.h"
#include "render/Sources.h"

#include <algorithm>
#include <cstdio>
#include <iomanip>
#include <thread>
#include <vector>

namespace orvane::kestrum::check {

namespace {

/// How much of each sound lies on the disk. The tail behind the mix is short and not counted; nor is an earlier sound that
/// has not been written over yet.
std::vector<double> sharesOf(std::span<const SceneJob> jobs, std::span<const TaskState> states,
                             const Mix& mix, std::filesystem::file_time_type begun) {
    constexpr double bytesPerFrame = 8;
    std::vector<double> shares;
    for (std::size_t index = 0; index < jobs.size(); ++index) {
        std::error_code notYet;
        const bool earlier = last_write_time(jobs[index].sound, notYet) < begun;
        const std::uintmax_t bytes = file_size(jobs[index].sound, notYet);
        const double share = notYet || earlier ? 0
                                               : static_cast<double>(bytes) /
                                                     (bytesPerFrame * static_cast<double>(mix.frameCount));
        shares.push_back(states[index] == TaskState::done ? 1 : std::min(share, 0.99));
    }
    return shares;
}

void renderScenes(const std::vector<SceneJob>& jobs, const Mix& mix, const CheckOptions& options) {
    std::vector<Task> tasks;
    std::vector<std::string> names;
    for (const SceneJob& job : jobs) {
        tasks.push_back({job.scene, job.command});
        names.push_back(job.scene);
    }
    const auto begun = std::filesystem::file_time_type::clock::now();
    ProgressTable table(stderr, names);
    runTasks(tasks, options.processes.value_or(std::max(1u, std::thread::hardware_concurrency())),
             [&](std::span<const TaskState> states) { table.show(sharesOf(jobs, states, mix, begun)); });
}

/// The Scenes in the menu's order, then the downmix.
std::vector<PageTrack> tracksOf() {
    std::vector<PageTrack> tracks;
    std::string section;
    for (const core::MenuEntry& entry : core::sceneMenu()) {
        if (!entry.sectionBefore.empty())
            section = entry.sectionBefore;
        tracks.push_back({std::string(entry.name), std::string(entry.shownAs), section, {}, 0, {}, {}});
    }
    tracks.push_back({downmixName, downmixName, "Without the plug-in", {}, 0, {}, {}});
    for (PageTrack& track : tracks)
        track.file = "matched/" + track.name + ".flac";
    return tracks;
}

/// @throws CheckError when a sound is not of what the check began with.
void requireUnchanged(const std::vector<SceneJob>& jobs, const std::string& layout, const Mix& mix,
                      const std::filesystem::path& bundle, const std::string& sources) {
    const bool allReady = std::ranges::all_of(
        jobs, [&](const SceneJob& job) { return resultOf(job, layout, sources) == JobResult::ready; });
    if (!allReady || render::sourcesText(mix.path, bundle) != sources)
        throw CheckError("The mix \"" + mix.path.string() +
                         "\", the plug-in or its data changed during the check: run the command again with "
                         "--replace once they stay as they are.");
}

/// Brings the files of the tracks to one loudness and fills in what the page shows of them.
PageContent compare(const Mix& mix, const std::string& layout, const CheckOptions& options,
                    StagedFiles& staged) {
    PageContent content{mix, layout, mix.seconds(), 0, {}, tracksOf()};
    for (const PageTrack& track : content.tracks) {
        const render::SoundFileSource file(renderedFile(options.folder, track.name));
        content.timelineSeconds =
            std::max(content.timelineSeconds, static_cast<double>(file.frameCount()) / file.sampleRate());
    }
    std::fputs("Measuring loudness, peaks and spectra\n", stderr);
    tools::onAllCores(content.tracks.size(), [&](std::size_t index) {
        PageTrack& track = content.tracks[index];
        track.measures = measureTrack(renderedFile(options.folder, track.name), content.timelineSeconds);
    });
    std::vector<TrackLevel> levels;
    for (const PageTrack& track : content.tracks) {
        if (!track.measures.loudness)
            throw CheckError(
                "\"" + track.name +
                "\" has no loudness, since all of it lies under the gate of -70 LUFS: give a mix that is "
                "louder and lasts a second or more.");
        levels.push_back({track.name, *track.measures.loudness, track.measures.truePeakDb});
    }
    const LoudnessMatch match = matchLoudness(levels, options.loudness);
    content.loudness = match.loudness;
    content.limitedBy = match.limitedBy;
    std::fputs("Writing the matched copies\n", stderr);
    std::vector<std::filesystem::path> copies;
    for (const PageTrack& track : content.tracks)
        copies.push_back(staged.add(matchedFile(options.folder, track.name)));
    tools::onAllCores(content.tracks.size(), [&](std::size_t index) {
        PageTrack& track = content.tracks[index];
        track.gainDb = match.gainsDb[index];
        track.windows =
            writeMatchedCopy(renderedFile(options.folder, track.name), track.gainDb, copies[index]);
    });
    return content;
}

void report(const PageContent& content, const CheckOptions& options, std::ostream& out) {
    out << std::fixed << std::setprecision(1);
    out << "Layout \"" << content.layout << "\". As rendered, and the gain that brings all to "
        << content.loudness << " LUFS";
    if (!content.limitedBy.empty())
        out << " (not " << options.loudness << ": \"" << content.limitedBy << "\" would peak above "
            << highestTruePeakDb << " dBTP)";
    out << ":\n";
    for (const PageTrack& track : content.tracks)
        out << "  " << std::left << std::setw(18) << track.name << std::right << std::setw(7)
            << *track.measures.loudness << " LUFS" << std::setw(7) << track.measures.truePeakDb << " dBTP"
            << std::setw(7) << track.gainDb << " dB\n";
    out << "Open " << std::filesystem::absolute(pagePath(options.folder)).lexically_normal().string()
        << " in a browser.\n";
}

} // namespace

void runCheck(const CheckOptions& options, std::ostream& out) {
    const Mix mix = openMix(options.mix);
    for (const auto& path : {mix.path, std::filesystem::absolute(options.folder)})
        render::requireUtf8(path);
    const std::string layout = chooseLayout(mix.channelCount, options.layout);
    render::requireRateAndData(mix.sampleRate);
    const std::filesystem::path bundle = render::chooseBundle(options.plugin);
    const std::string sources = render::sourcesText(mix.path, bundle);
    requireSound(mix);
    prepareFolder(options.folder, mix);

    const auto program = std::filesystem::read_symlink("/proc/self/exe");
    const auto jobs =
        sceneJobs(mix, layout, options.folder / "rendered", program, options.plugin.value_or(""));
    if (options.listJobs) {
        for (const SceneJob& job : jobsToRun(jobs, layout, sources, options.replace))
            out << shellLine(job.command) << "\n";
        return;
    }
    const FolderLock lock(options.folder);
    const auto missing = jobsToRun(jobs, layout, sources, options.replace);
    if (missing.size() < jobs.size())
        std::fprintf(stderr, "%zu of %zu Scenes are rendered already and kept\n",
                     jobs.size() - missing.size(), jobs.size());
    renderScenes(missing, mix, options);
    writeDownmix(mix.path, layout, renderedFile(options.folder, downmixName));
    requireUnchanged(jobs, layout, mix, bundle, sources);
    StagedFiles staged;
    const PageContent content = compare(mix, layout, options, staged);
    writePage(content, staged.add(pagePath(options.folder)));
    staged.publish();
    report(content, options, out);
}

} // namespace orvane::kestrum::check
