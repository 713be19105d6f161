// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/reports/FolderReport.h"

#include "data/DataError.h"
#include "data/measures/Loudness.h"
#include "data/reports/HeadPlots.h"
#include "data/reports/SceneReport.h"
#include "data/rooms/ReverbFile.h"
#include "data/sets/About.h"
#include "data/sets/FolderCheck.h"

#include "parameters/core/Scene.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <ostream>

namespace orvane::kestrum::tools {

namespace {

const FileVerdict& verdictOn(std::string_view file, const std::vector<FileVerdict>& verdicts) {
    return *std::ranges::find(verdicts, file, &FileVerdict::name);
}

std::string faultText(const FileVerdict& verdict) {
    return verdict.name + ": " + verdict.finding + "; " + verdict.remedy;
}

/// The responses that can be relied on.
std::vector<ResponseSet> readHead(const std::filesystem::path& data,
                                  const std::vector<FileVerdict>& verdicts) {
    std::vector<ResponseSet> sets;
    for (const ResponseFile& file : responseFiles)
        if (verdictOn(file.name, verdicts).sound)
            sets.push_back(readResponseSet(file, data));
    if (sets.empty())
        throw DataError("\"" + data.string() + "\" holds no responses of a head that can be relied on (" +
                        verdicts.front().name + ": " + verdicts.front().finding +
                        "): make them with \"kestrum data hrir --out " + data.string() + "\".");
    return sets;
}

const ResponseSet* setOfRate(const std::vector<ResponseSet>& sets, double sampleRate) {
    const auto found =
        std::ranges::find_if(sets, [&](const ResponseSet& set) { return set.file.sampleRate == sampleRate; });
    return found == sets.end() ? nullptr : &*found;
}

/// Why the Scenes cannot be rendered at a rate; empty where they can. A damaged file would be found out only after all
/// of them are rendered.
std::string hindrance(double sampleRate, const std::vector<FileVerdict>& verdicts) {
    std::vector<std::string_view> needed;
    for (const ResponseFile& file : responseFiles)
        if (file.sampleRate == sampleRate)
            needed.push_back(file.name);
    for (const ReverbFile& file : reverbFiles)
        if (file.sampleRate == sampleRate)
            needed.push_back(file.name);
    for (const std::string_view name : needed)
        if (const FileVerdict& verdict = verdictOn(name, verdicts); !verdict.sound)
            return faultText(verdict);
    return needed.empty() ? "no data file is made for " + shortest(sampleRate) + " Hz." : "";
}

std::vector<std::string_view> wantedScenes(const FolderReportOptions& options) {
    if (!options.scenes.empty())
        return options.scenes;
    std::vector<std::string_view> scenes;
    for (const core::Scene::Preset& preset : core::Scene::presets())
        scenes.push_back(preset.name);
    return scenes;
}

/// Noise of its own on every channel of a layout, none on `silentChannel`.
std::vector<Samples> noiseBus(std::size_t channelCount, std::size_t silentChannel,
                              const FolderReportOptions& options) {
    constexpr double level = 0.1; // -20 dB
    std::vector<Samples> bus;
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        bus.push_back(pinkNoise(options.noiseLength, options.probe.sampleRate,
                                static_cast<std::uint32_t>(channel + 1)));
        for (double& sample : bus.back())
            sample *= channel == silentChannel ? 0 : level;
    }
    return bus;
}

std::vector<SceneFindings> findScenes(const SceneProbe& probe, const FolderReportOptions& options,
                                      std::ostream& out) {
    constexpr std::size_t lowFrequencyChannel = 3; // of "5.1 ITU"
    const std::vector<Samples> stereo = noiseBus(2, 2, options);
    const std::vector<Samples> surround = noiseBus(6, lowFrequencyChannel, options);
    const auto loudness = [&](const std::vector<Samples>& bus, std::string_view scene,
                              std::string_view layout) {
        return integratedLoudness(probe.render(bus, scene, layout), options.probe.sampleRate);
    };
    std::vector<SceneFindings> findings;
    for (const std::string_view scene : wantedScenes(options)) {
        findings.push_back({measureScene(probe, scene), loudness(stereo, scene, SceneProbe::defaultLayout),
                            loudness(surround, scene, "5.1 ITU")});
        const SceneMeasures& measures = findings.back().measures;
        out << scene << ": ";
        if (measures.target)
            out << "T60 of the whole " << fixedText(measures.decaySeconds, 2) << " s, of the reverb alone "
                << fixedText(measures.reverbDecaySeconds, 2) << " s, ";
        out << "C50 " << ratioText(measures.clarity50Db, " dB") << ", direct over the rest "
            << ratioText(measures.directToRestDb, " dB") << ".\n"
            << std::flush;
    }
    return findings;
}

std::string contents(const std::vector<SceneFindings>& findings) {
    std::string list = "<nav><ul><li><a href=\"#overview\">Rooms</a></li>";
    for (const SceneFindings& finding : findings)
        list += "<li><a href=\"#" + anchorOf(finding.measures.scene) + "\">" +
                escaped(finding.measures.scene) + "</a></li>";
    return list + "<li><a href=\"#head\">Head</a></li><li><a href=\"#methods\">How it is measured</a></li>"
                  "<li><a href=\"#origin\">Origin</a></li></ul></nav>\n";
}

constexpr const char* methods =
    "<section id=\"methods\"><h2>How it is measured</h2>\n"
    "<p>Each Scene is rendered by the plug-in's own engine: an impulse on the left loudspeaker of "
    "\"2.0 +/-30°\", 48 kHz, blocks of 512, Ambience 50, Focus 0, Master Gain 0, after every fade and gain "
    "has "
    "settled. Direct sound, reflections and reverb come from renderings with and without them.</p>\n<ul>"
    "<li>Energy decay: backward integration (Schroeder 1965), cut where it meets its noise (Lundeby et al. "
    "1995), "
    "both ears' energies added.</li>"
    "<li>T60: T30 of ISO 3382, T20 where the decay does not reach deep enough, in octave bands filtered "
    "backwards "
    "in time (Jacobsen and Rindel 1987). The figure in the table is the mean of 500 Hz and 1 kHz. The goal "
    "is for the whole response.</li>"
    "<li>C50, C80: energy up to 50 or 80 ms from the direct sound's arrival over the energy after it. Direct "
    "over "
    "the rest: the direct sound's energy over everything else's.</li>"
    "<li>Coherence: real part of the ears' cross-spectrum without lag over the root of their powers, in "
    "third-octave bands of the reverb from the time on at which its density is to be full, the decay of each "
    "band undone. "
    "The "
    "diffuse field is the same figure over all directions of the head, each by its share of the sphere.</li>"
    "<li>Echo density: Abel and Huang 2006, Hann windows of 20 ms, of 5 ms for a reverb that is to be dense "
    "before 20 ms. For the reverb alone the decay inside the "
    "window is undone. Noise itself keeps within some 0.1 of 1, so the moment of the first 1 is a rough "
    "one.</li>"
    "<li>Loudness: ITU-R BS.1770, integrated; pink noise, −20 dB RMS, of its own on every channel; the "
    "low-frequency channel is silent.</li></ul></section>\n";

/// What is wrong with the data, for the top of the page; nothing where all is sound.
std::string faultList(const std::vector<FileVerdict>& verdicts) {
    std::string items;
    for (const FileVerdict& verdict : verdicts)
        if (!verdict.sound)
            items += "<li>" + escaped(faultText(verdict)) + "</li>\n";
    return items.empty()
               ? ""
               : "<div id=\"faults\"><p class=\"missed\">Files of this folder are missing or damaged:</p>\n"
                 "<ul>\n" +
                     items + "</ul></div>\n";
}

std::string headSection(std::span<const Plot> plots, const std::filesystem::path& folder) {
    std::string text = "<section id=\"head\"><h2>Head</h2>\n<div class=\"pair\">";
    for (const Plot& plot : plots)
        text += figureElement(plot, folder);
    return text + "</div></section>\n";
}

std::string originSection(const std::filesystem::path& data) {
    std::ifstream stream(data / aboutFileName);
    const std::string about((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    return "<section id=\"origin\"><h2>Origin</h2>\n<pre>" +
           escaped(about.empty() ? "The folder does not say where its data comes from." : about) +
           "</pre></section>\n";
}

/// The chapter on the Scenes, or why there is none.
std::string sceneChapter(const std::vector<ResponseSet>& head, const std::vector<FileVerdict>& verdicts,
                         const std::filesystem::path& data, const std::filesystem::path& plotFolder,
                         const FolderReportOptions& options, std::ostream& out) {
    if (const std::string reason = hindrance(options.probe.sampleRate, verdicts); !reason.empty()) {
        out << "No rooms: " << reason << "\n";
        return "<section id=\"overview\"><h2>Rooms</h2>\n<p class=\"missed\">No rooms: " + escaped(reason) +
               "</p></section>\n";
    }
    const SceneProbe probe(data, options.probe);
    const std::vector<SceneFindings> findings = findScenes(probe, options, out);
    const std::vector<CoherenceBand> target = diffuseFieldCoherence(
        setOfRate(head, options.probe.sampleRate)->responses, gridWeights(), options.probe.sampleRate);
    const SceneChapter chapter{findings, target, options.probe.sampleRate, plotFolder};
    const std::vector<Plot> plots = writeScenePlots(chapter);
    drawPlots(plots, plotFolder);
    return contents(findings) + sceneOverview(chapter, plots) + sceneSections(chapter, plots);
}

} // namespace

void writeFolderReport(const std::filesystem::path& data, const std::filesystem::path& folder,
                       const FolderReportOptions& options, std::ostream& out) {
    const std::vector<FileVerdict> verdicts = checkDataFolder(data);
    const std::vector<ResponseSet> head = readHead(data, verdicts);
    const std::filesystem::path plotFolder = folder / "plots";
    std::error_code failure;
    std::filesystem::create_directories(plotFolder, failure);
    if (failure)
        throw DataError("The report cannot be written to \"" + folder.string() +
                        "\": give a folder that you may write to.");
    for (const FileVerdict& verdict : verdicts)
        if (!verdict.sound)
            out << "FAULT  " << faultText(verdict) << "\n";
    const ResponseSets sets(head.begin(), head.end());
    const std::vector<Plot> headPlots = writeHeadPlots(sets, {}, plotFolder);
    drawPlots(headPlots, plotFolder);
    writePage(pageHead("Orvane KESTRUM: rooms and head") + faultList(verdicts) +
                  sceneChapter(head, verdicts, data, plotFolder, options, out) +
                  headSection(headPlots, plotFolder) + methods + originSection(data) + "</body>\n</html>\n",
              folder);
    out << "Report: " << (folder / "index.html").string() << "\n";
}

} // namespace orvane::kestrum::tools
