// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/DataCommands.h"

#include "data/DataError.h"
#include "data/head/HrirBuilder.h"
#include "data/head/SofaReader.h"
#include "data/reports/Report.h"
#include "data/reports/ReportCommand.h"
#include "data/reports/ReportPage.h"
#include "data/rooms/DecayTableCommand.h"
#include "data/rooms/ReverbCommand.h"
#include "data/sets/About.h"
#include "data/sets/FolderCheck.h"
#include "data/sets/SetBuilder.h"
#include "data/sets/SetCommands.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <memory>

namespace orvane::kestrum::tools {

void makeFolder(const std::filesystem::path& folder) {
    std::error_code failure;
    std::filesystem::create_directories(folder, failure);
    if (!std::filesystem::is_directory(folder) || access(folder.c_str(), W_OK) != 0)
        throw DataError("The folder \"" + folder.string() +
                        "\" cannot be made or written: give one that you may write to.");
}

namespace {

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

std::string goalsSentence(const BuiltSet& built) {
    const auto figures = built.figures();
    const auto missed = std::ranges::count_if(figures, [](const Figure& figure) { return !figure.met(); });
    return missed == 0 ? "all goals met" : std::to_string(missed) + " goals missed";
}

/// One head alone, or a complete set among those of the machine.
void runHrirCommand(const HrirRequest& request, std::ostream& out) {
    if (!request.name.empty() && !request.out.empty())
        throw DataError("Both --out and --name are given: --out is for the head's files alone, --name for a "
                        "complete set.");
    if (request.name.empty() && !request.headphoneEq.empty())
        throw DataError("Headphones are folded into head and rooms alike, so --headphone-eq makes a complete "
                        "set: give it a "
                        "name with --name.");
    if (request.name.empty())
        runHrir(request, out);
    else
        runSet(request, SetStore::ofThisMachine(), out);
}

} // namespace

BuiltSet makeHead(MeasuredSet measured, const std::string& about, const std::filesystem::path& folder,
                  std::ostream& out) {
    tellSource(measured, out);
    BuiltSet built = buildResponses(std::move(measured));
    tellFindings(built, out);
    withdrawAbout(folder);
    for (const BuiltFile& file : built.files)
        writeResponseSet(file.set, folder);
    writeAbout(about, folder);
    return built;
}

void runHrir(const HrirRequest& request, std::ostream& out) {
    MeasuredSet measured = readSofa(request.sofa);
    const std::string about = aboutText(request.sofa, measured.origin);
    if (request.aboutOnly) {
        out << about;
        return;
    }
    if (request.out.empty())
        throw DataError(
            "There is no place for the files: name a folder with --out, or a complete set with --name.");
    if (!request.report.empty())
        requireGnuplot();
    makeFolder(request.out);
    if (!request.report.empty())
        makeFolder(request.report);
    const BuiltSet built = makeHead(std::move(measured), about, request.out, out);
    if (!request.report.empty()) {
        writeReport(built, about, request.report);
        out << "Report: " << (request.report / "index.html").string() << "\n";
    }
    out << "Wrote OVNdata120.dat, OVNdata121.dat and OVNdata122.dat to \"" << request.out.string()
        << "\": " << goalsSentence(built) << ".\n";
}

void runCheck(const std::filesystem::path& folder, std::ostream& out) {
    if (!std::filesystem::is_directory(folder))
        throw DataError("\"" + folder.string() +
                        "\" is no folder: \"kestrum doctor\" names the command that installs the data.");
    const std::vector<FileVerdict> verdicts = checkDataFolder(folder);
    for (const FileVerdict& verdict : verdicts)
        out << (verdict.sound ? "sound  " : "FAULT  ") << verdict.name << ": " << verdict.finding << ".\n";
    requireSoundFolder(folder, verdicts);
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
        ->add_option("--name", request->name, "Make a complete set of this name, rooms and all, for \"use\"")
        ->type_name("NAME");
    command
        ->add_option("--headphone-eq", request->headphoneEq,
                     "With --name: fold in a correction of headphones, a parametric equaliser's text or a "
                     "response as WAV")
        ->type_name("FILE");
    command
        ->add_option("--report", request->report,
                     "Folder for a page with plots and a verdict (needs gnuplot)")
        ->type_name("DIR");
    command->add_flag("--about", request->aboutOnly, "Only print the about.json that the set would carry");
    command->footer("Examples:\n"
                    "  kestrum data hrir --out my-head --sofa my-head.sofa --report my-head-report\n"
                    "  kestrum data hrir --name mine --sofa my-head.sofa --headphone-eq my-headphones.txt");
    command->callback([request, &out] { runHrirCommand(*request, out); });
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
        program.add_subcommand("data", "Makes, checks, shows and switches the plug-in's data files.");
    data->require_subcommand(1);
    addHrirCommand(*data, out);
    addCheckCommand(*data, out);
    addDecayTableCommand(*data, out);
    addReportCommand(*data, out);
    addReverbCommand(*data, out);
    addSetCommands(*data, out);
}

void addDataCommands(CLI::App& program) { addDataCommands(program, std::cout); }

} // namespace orvane::kestrum::tools
