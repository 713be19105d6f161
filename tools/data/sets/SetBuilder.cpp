// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/sets/SetBuilder.h"

#include "data/DataError.h"
#include "data/head/SofaReader.h"
#include "data/headphones/HeadphoneFold.h"
#include "data/headphones/HeadphoneReport.h"
#include "data/reports/Report.h"
#include "data/reports/ReportPage.h"
#include "data/rooms/ReverbCommand.h"
#include "data/sets/About.h"
#include "data/sets/FolderCheck.h"
#include "data/sets/WholeFile.h"

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

/// The first sound set that was made as told.
std::optional<InstalledSet> setMadeAs(const std::string& about, const std::vector<InstalledSet>& sets) {
    for (const InstalledSet& set : sets)
        if (aboutOf(set.folder) == about && isSound(set.folder))
            return set;
    return std::nullopt;
}

/// Makes what was made before the latest of its name: "use" takes the set that was asked for last.
/// @return whether there is such a set, sound.
bool keptFromBefore(const std::string& about, const std::string& name, const SetStore& store,
                    std::ostream& out) {
    const std::vector<InstalledSet> sets = store.madeHere(name); // the latest first
    const std::optional<InstalledSet> made = setMadeAs(about, sets);
    if (!made)
        return false;
    if (made->folder == sets.front().folder) {
        out << "The set \"" << name << "\" is up to date.\n";
        return true;
    }
    store.makeLatest(*made);
    out << "The set \"" << name << "\" was made like this before, in \"" << made->folder.string()
        << "\", and that is the latest again: let the plug-in read it with \"kestrum data use " << name
        << "\".\n";
    return true;
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
    if (request.report.empty()) {
        const StoreLock others = store.lock(); // nobody removes what is copied
        if (const auto made = setMadeAs(plainAbout, store.sets())) {
            out << "Head and rooms: those of the set \"" << made->name
                << "\", which is of the same measurement.\n";
            for (const FileRule& rule : dataFolderRules())
                copyWhole(made->folder / rule.name, folder / rule.name);
            return std::nullopt;
        }
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

/// Gives a set its name, and tells which of its name had to go.
void publishSet(StagedSet staged, const std::string& name, const SetStore& store, std::ostream& out) {
    {
        const StoreLock others = store.lock();
        if (const auto before = store.madeHere(name); !before.empty())
            copyForeignFiles(before.front().folder, staged.folder());
    }
    requireSoundFolder(staged.folder(), checkDataFolder(staged.folder()));
    const std::filesystem::path folder = store.publish(std::move(staged), name);
    out << "The set \"" << name << "\" is complete and sound in \"" << folder.string()
        << "\": let the plug-in read it with \"kestrum data use " << name << "\".\n";
    for (const InstalledSet& old : store.removeOlder(name))
        out << "Removed \"" << old.folder.string() << "\": the latest two sets of a name are kept.\n";
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
    store.requireKind(request.name, SetKind::head);
    const bool reported = !request.report.empty();
    if (!reported && keptFromBefore(about, request.name, store, out))
        return;
    if (reported)
        requireGnuplot();
    StagedSet staged = store.stage();
    if (reported)
        makeFolder(request.report);
    const std::optional<BuiltSet> built =
        makePlainSet(request, std::move(measured), headAbout, staged.folder(), store, out);
    FoldReport fold;
    if (headphones) {
        fold = foldHeadphones(staged.folder(), *headphones, request.headphoneEq, about);
        tellFold(*headphones, fold, out);
    }
    if (!reported || !keptFromBefore(about, request.name, store, out)) // or only the report was wanted
        publishSet(std::move(staged), request.name, store, out);
    if (!built || !reported)
        return;
    writeReport(*built, about, request.report,
                headphones ? headphoneChapter(*headphones, fold, request.report) : std::string());
    out << "Report: " << (request.report / "index.html").string() << "\n";
}

} // namespace orvane::kestrum::tools
