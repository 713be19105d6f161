// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/DataCommands.h"

#include "data/About.h"
#include "data/DataError.h"
#include "data/DecayTableCommand.h"
#include "data/FolderCheck.h"
#include "data/HrirBuilder.h"
#include "data/Report.h"
#include "data/ReportCommand.h"
#include "data/ReverbCommand.h"
#include "data/SofaReader.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <memory>

namespace orvane::kestrum::tools {

namespace {

void makeFolder(const std::filesystem::path& folder) {
    std::error_code failure;
    std::filesystem::create_directories(folder, failure);
    if (!std::filesystem::is_directory(folder))
        throw DataError("The folder \"" + folder.string() +
                        "\" cannot be made: give one that you may write to.");
}

void tellSource(const MeasuredSet& measured, std::ostream& out) {
    out << "Source: " << measured.origin.title << ", " << measured.measurements.size() << " directions, "
        << measured.tapCount << " samples at " << std::lround(measured.sampleRate) << " Hz.\n";
}

void tellFindings(const BuiltSet& built, std::ostream& out) {
    out << std::fixed << std::setprecision(1);
    out << "Ears: the file's first receiver is the " << (built.ears.swapped ? "right" : "left")
        << " ear, told by sources at the sides (" << built.ears.levelDifferenceDb << " dB louder and "
        << std::setprecision(0) << built.ears.arrivalLeadSeconds * 1e6 << " us earlier at the near ear).\n";
    out << "Coverage: " << built.source.responses.size() << " directions after merging " << built.mergedCount
        << " repeats, measured all round from " << built.cap.lowestCoveredDegrees
        << " degrees up, no gap wider than " << std::setprecision(1) << built.cap.largestGapDegrees
        << " degrees; " << built.cap.modelledCount
        << " directions below completed by the spherical-head model.\n";
    out << std::setprecision(3);
    for (const Figure& figure : built.figures())
        out << (figure.met() ? "  met     " : "  MISSED  ") << figure.name << ": " << figure.value << " "
            << figure.unit << " (goal: " << (figure.atLeast ? "at least " : "at most ") << std::defaultfloat
            << figure.goal << std::fixed << ")\n";
    out << "  (Between the measured directions, each left out in turn: level between the ears "
        << built.leaveOneOut.meanLevelDb << " dB off in the mean, time "
        << built.leaveOneOut.worstDelaySeconds * 1e6 << " us at worst.)\n";
}

} // namespace

void runHrir(const HrirRequest& request, std::ostream& out) {
    MeasuredSet measured = readSofa(request.sofa);
    const std::string about = aboutText(request.sofa, measured.origin);
    if (request.aboutOnly) {
        out << about;
        return;
    }
    if (request.out.empty())
        throw DataError("There is no folder for the files: name one with --out.");
    makeFolder(request.out);
    if (!request.report.empty())
        makeFolder(request.report);
    tellSource(measured, out);
    const BuiltSet built = buildResponses(std::move(measured));
    tellFindings(built, out);
    withdrawAbout(request.out);
    for (const BuiltFile& file : built.files)
        writeResponseSet(file.set, request.out);
    writeAbout(about, request.out);
    if (!request.report.empty()) {
        writeReport(built, about, request.report);
        out << "Report: " << (request.report / "index.html").string() << "\n";
    }
    const auto figures = built.figures();
    const auto missed = std::ranges::count_if(figures, [](const Figure& figure) { return !figure.met(); });
    out << "Wrote OVNdata120.dat, OVNdata121.dat and OVNdata122.dat to \"" << request.out.string()
        << "\": " << (missed == 0 ? std::string("all goals met") : std::to_string(missed) + " goals missed")
        << ".\n";
}

void runCheck(const std::filesystem::path& folder, std::ostream& out) {
    if (!std::filesystem::is_directory(folder))
        throw DataError("\"" + folder.string() +
                        "\" is no folder: make and install the data with scripts/install-data.");
    std::string remedy;
    std::size_t faults = 0;
    for (const FileVerdict& verdict : checkDataFolder(folder)) {
        out << (verdict.sound ? "sound  " : "FAULT  ") << verdict.name << ": " << verdict.finding << ".\n";
        if (!verdict.sound) {
            if (faults++ == 0)
                remedy = verdict.remedy; // what comes later in the list is made of what comes first
        }
    }
    if (faults > 0)
        throw DataError("The data folder \"" + folder.string() + "\" has " + std::to_string(faults) +
                        (faults == 1 ? " file" : " files") + " missing or not sound: " + remedy);
    out << "The data folder \"" << folder.string() << "\" is complete and sound.\n";
}

void addHrirCommand(CLI::App& data, std::ostream& out) {
    CLI::App* const command = data.add_subcommand(
        "hrir", "Makes the plug-in's files of head-related responses from a measured set.");
    const auto request = std::make_shared<HrirRequest>();
    command->add_option("--sofa", request->sofa, "SOFA file of the convention SimpleFreeFieldHRIR")
        ->type_name("FILE")
        ->capture_default_str();
    command->add_option("--out", request->out, "Folder for the three files and about.json; made when missing")
        ->type_name("DIR");
    command
        ->add_option("--report", request->report,
                     "Folder for a page with plots and a verdict (needs gnuplot)")
        ->type_name("DIR");
    command->add_flag("--about", request->aboutOnly, "Only print the about.json that the set would carry");
    command->footer("Example:\n"
                    "  kestrum data hrir --out my-head --sofa my-head.sofa --report my-head-report");
    command->callback([request, &out] { runHrir(*request, out); });
}

void addCheckCommand(CLI::App& data, std::ostream& out) {
    CLI::App* const command =
        data.add_subcommand("check", "Says file by file whether a data folder is complete and sound.");
    const auto folder = std::make_shared<std::filesystem::path>();
    command->add_option("DIR", *folder, "The data folder")->required()->type_name("");
    command->footer("Example:\n"
                    "  kestrum data check /opt/Tenmarsh/OrvaneVSTPlugin/data");
    command->callback([folder, &out] { runCheck(*folder, out); });
}

void addDataCommands(CLI::App& program, std::ostream& out) {
    CLI::App* const data =
        program.add_subcommand("data", "Makes, checks and shows the plug-in's data files.");
    data->require_subcommand(1);
    addHrirCommand(*data, out);
    addCheckCommand(*data, out);
    addDecayTableCommand(*data, out);
    addReportCommand(*data, out);
    addReverbCommand(*data, out);
}

void addDataCommands(CLI::App& program) { addDataCommands(program, std::cout); }

} // namespace orvane::kestrum::tools
