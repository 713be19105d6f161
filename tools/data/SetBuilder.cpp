// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/SetBuilder.h"

#include "data/About.h"
#include "data/DataError.h"
#include "data/FolderCheck.h"
#include "data/HeadphoneFold.h"
#include "data/HeadphoneReport.h"
#include "data/Report.h"
#include "data/ReverbCommand.h"
#include "data/SofaReader.h"
#include "data/WholeFile.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>
#include <ostream>

namespace orvane::kestrum::tools {

namespace {

std::string aboutOf(const std::filesystem::path& folder) {
    std::ifstream stream(folder / aboutFileName, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

bool isSound(const std::filesystem::path& folder) {
    return std::ranges::all_of(checkDataFolder(folder), &FileVerdict::sound);
}

/// A sound set that was made as told; of any name where none is given.
std::optional<InstalledSet> setMadeAs(const std::string& about, const std::string& name,
                                      const SetStore& store) {
    for (const InstalledSet& set : store.sets())
        if ((name.empty() || (set.name == name && !set.packaged)) && aboutOf(set.folder) == about &&
            isSound(set.folder))
            return set;
    return std::nullopt;
}

/// The latest set made here under this name, whatever its state.
std::optional<InstalledSet> latestOf(const std::string& name, const SetStore& store) {
    try {
        const InstalledSet set = store.find(name);
        return set.packaged ? std::nullopt : std::optional(set);
    } catch (const DataError&) {
        return std::nullopt;
    }
}

std::vector<std::string> ownFiles() {
    std::vector<std::string> names{"headphones.txt", "headphones.wav"};
    for (const FileRule& rule : dataFolderRules())
        names.push_back(rule.name);
    return names;
}

/// The files of a set that no step of ours makes.
void copyForeignFiles(const std::filesystem::path& from, const std::filesystem::path& to) {
    const std::vector<std::string> own = ownFiles();
    for (const auto& entry : std::filesystem::directory_iterator(from)) {
        const std::string name = entry.path().filename().string();
        if (entry.is_regular_file() && std::ranges::find(own, name) == own.end())
            copyWhole(entry.path(), to / name);
    }
}

/// Head and rooms for any headphones.
/// @return what is to be told about the head in a report; nothing where both were copied.
std::optional<BuiltSet> makePlainSet(const HrirRequest& request, MeasuredSet measured,
                                     const std::string& about, const std::filesystem::path& folder,
                                     const SetStore& store, std::ostream& out) {
    const std::string plainAbout = aboutWithRooms(about);
    if (request.report.empty())
        if (const auto made = setMadeAs(plainAbout, "", store)) {
            out << "Head and rooms: those of the set \"" << made->name
                << "\", which is of the same measurement.\n";
            for (const FileRule& rule : dataFolderRules())
                copyWhole(made->folder / rule.name, folder / rule.name);
            return std::nullopt;
        }
    BuiltSet built = makeHead(std::move(measured), about, folder, out);
    makeRooms(folder, out);
    return built;
}

AboutHeadphones toldOf(const Headphones& headphones) {
    const HeadphoneCurve& curve = headphones.curve;
    return {headphones.fileName, headphones.sha256, headphones.copyName, headphones.description,
            curve.levelDb(),     curve.leastDb(),   curve.mostDb(),      headphoneMethodNumber};
}

} // namespace

void runSet(const HrirRequest& request, const SetStore& store, std::ostream& out) {
    requireSetName(request.name);
    MeasuredSet measured = readSofa(request.sofa);
    std::optional<Headphones> headphones;
    if (!request.headphoneEq.empty())
        headphones = readHeadphones(request.headphoneEq);
    const std::string headAbout = aboutText(request.sofa, measured.origin);
    std::string about = aboutWithRooms(headAbout);
    if (headphones)
        about = aboutWithHeadphones(about, toldOf(*headphones));
    if (request.aboutOnly) {
        out << about;
        return;
    }
    if (request.report.empty() && setMadeAs(about, request.name, store)) {
        out << "The set \"" << request.name << "\" is up to date.\n";
        return;
    }
    StagedSet staged = store.stage();
    if (!request.report.empty())
        makeFolder(request.report);
    const std::optional<BuiltSet> built =
        makePlainSet(request, std::move(measured), headAbout, staged.folder(), store, out);
    std::string chapter;
    if (headphones) {
        const FoldReport fold = foldHeadphones(staged.folder(), *headphones, request.headphoneEq, about);
        tellFold(*headphones, fold, out);
        if (!request.report.empty())
            chapter = headphoneChapter(*headphones, fold, request.report);
    }
    if (built && !request.report.empty()) {
        writeReport(*built, about, request.report, chapter);
        out << "Report: " << (request.report / "index.html").string() << "\n";
    }
    if (setMadeAs(about, request.name, store)) { // only the report was wanted
        out << "The set \"" << request.name << "\" is up to date.\n";
        return;
    }
    if (const auto latest = latestOf(request.name, store))
        copyForeignFiles(latest->folder, staged.folder());
    requireSoundFolder(staged.folder(), checkDataFolder(staged.folder()));
    const std::filesystem::path folder = store.publish(std::move(staged), request.name);
    out << "The set \"" << request.name << "\" is complete and sound in \"" << folder.string()
        << "\": let the plug-in read it with \"kestrum data use " << request.name << "\".\n";
}

} // namespace orvane::kestrum::tools
