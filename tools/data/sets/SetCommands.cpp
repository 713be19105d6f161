// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/sets/SetCommands.h"

#include "data/DataError.h"
#include "data/sets/About.h"
#include "data/sets/FolderCheck.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <iomanip>
#include <memory>
#include <ostream>
#include <vector>

namespace orvane::kestrum::tools {

namespace {

/// A line of the list.
using Row = std::array<std::string, 6>;

bool soundIn(std::string_view file, const std::vector<FileVerdict>& verdicts) {
    const auto verdict = std::ranges::find(verdicts, file, &FileVerdict::name);
    return verdict != verdicts.end() && verdict->sound;
}

/// The native rates that head and rooms both serve; the plug-in runs at 2 and 4 times 44.1 and 48 kHz, too.
std::string ratesText(const std::vector<FileVerdict>& verdicts) {
    std::string text;
    for (const std::size_t file : {2u, 0u, 1u})
        if (soundIn(responseFiles[file].name, verdicts) && soundIn(reverbFiles[file].name, verdicts)) {
            static_assert(responseFiles[0].sampleRate == 44100 && responseFiles[1].sampleRate == 48000);
            constexpr std::array<const char*, 3> names{"44.1", "48", "24"};
            text += (text.empty() ? "" : " ") + std::string(names[file]);
        }
    return text.empty() ? "none" : text;
}

std::string stateText(const std::vector<FileVerdict>& verdicts) {
    const auto fault = std::ranges::find(verdicts, false, &FileVerdict::sound);
    if (fault == verdicts.end())
        return "sound";
    return fault->outdated ? "sound, but " + fault->finding : "FAULT: " + fault->name + ": " + fault->finding;
}

std::string sourceText(const std::filesystem::path& folder) {
    const AboutSource source = aboutSource(folder);
    if (source.origin.empty() || source.inputFile.empty())
        return source.origin.empty() ? source.inputFile.empty() ? "unknown" : source.inputFile
                                     : source.origin;
    return source.origin + " (" + source.inputFile + ")";
}

Row rowOf(const InstalledSet& set) {
    const std::vector<FileVerdict> verdicts = checkDataFolder(set.folder);
    const auto headphones = aboutHeadphones(set.folder);
    return {set.used ? "* " + set.name : "  " + set.name,
            set.packaged ? "package" : set.folder.filename().string(),
            ratesText(verdicts),
            headphones ? headphones->fileName : "any",
            sourceText(set.folder),
            stateText(verdicts)};
}

void tellRows(const std::vector<Row>& rows, std::ostream& out) {
    std::array<std::size_t, std::tuple_size_v<Row>> widths{};
    for (const Row& row : rows)
        for (std::size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], row[column].size());
    for (const Row& row : rows) {
        for (std::size_t column = 0; column + 1 < row.size(); ++column)
            out << std::left << std::setw(static_cast<int>(widths[column] + 2)) << row[column];
        out << row.back() << "\n";
    }
}

const InstalledSet* usedOf(const std::vector<InstalledSet>& sets) {
    const auto used = std::ranges::find(sets, true, &InstalledSet::used);
    return used == sets.end() ? nullptr : &*used;
}

} // namespace

void runUse(const std::string& name, const SetStore& store, std::ostream& out) {
    const InstalledSet set = store.find(name);
    const std::vector<FileVerdict> verdicts = checkDataFolder(set.folder);
    requireUsableFolder(set.folder, verdicts);
    if (set.used) {
        out << "The plug-in reads \"" << set.name << "\" already.\n";
        return;
    }
    const std::vector<InstalledSet> sets = store.sets();
    const InstalledSet* const before = usedOf(sets);
    store.use(set);
    out << "The plug-in now reads \"" << set.name << "\", \"" << set.folder.string()
        << "\"; restart hosts that run.\n";
    for (const FileVerdict& verdict : verdicts)
        if (verdict.outdated)
            out << "Note: " << verdict.finding << "; it will do until you make the set anew.\n";
    if (before != nullptr) {
        const std::vector<InstalledSet> ofName = store.madeHere(before->name);
        const bool known = !ofName.empty() && ofName.front().folder == before->folder;
        out << "Back to the set before: kestrum data use " << (known ? before->name : before->folder.string())
            << "\n";
    }
}

void runList(const SetStore& store, std::ostream& out) {
    const std::vector<InstalledSet> sets = store.sets();
    std::vector<Row> rows{{"  Name", "Folder", "Rates, kHz", "Headphones", "Head", "State"}};
    for (const InstalledSet& set : sets)
        rows.push_back(rowOf(set));
    if (!sets.empty())
        tellRows(rows, out);
    const auto linked = store.linked();
    if (usedOf(sets) != nullptr)
        out << "The plug-in reads the set marked *.\n";
    else if (linked)
        out << "The plug-in reads none of them: \"" << store.link().string() << "\" leads to \""
            << linked->string() << "\".\n";
    else if (std::filesystem::is_directory(store.link()))
        out << "The plug-in reads none of them: \"" << store.link().string()
            << "\" is a folder of its own.\n";
    else
        out << "The plug-in finds no data: \"" << store.link().string()
            << "\" is missing; choose a set with \"kestrum data use NAME\""
            << (sets.empty() ? " after making one" : "") << ".\n";
}

void addSetCommands(CLI::App& data, std::ostream& out) {
    CLI::App* const use = data.add_subcommand("use", "Lets the plug-in read another set, in one step.");
    const auto name = std::make_shared<std::string>();
    use->add_option("NAME", *name, "The set's name, or its folder where a name has several")
        ->required()
        ->type_name("");
    use->footer("Example:\n"
                "  kestrum data use mine");
    use->callback([name, &out] { runUse(*name, SetStore::ofThisMachine(), out); });
    CLI::App* const list = data.add_subcommand(
        "list", "Shows the sets of this machine: which is used, where from, whether it is sound.");
    list->footer("Example:\n"
                 "  kestrum data list");
    list->callback([&out] { runList(SetStore::ofThisMachine(), out); });
}

} // namespace orvane::kestrum::tools
