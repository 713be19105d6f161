// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/rooms/ReverbCommand.h"

#include "data/DataError.h"
#include "data/rooms/ReverbBuilder.h"
#include "data/rooms/ReverbCalibration.h"
#include "data/sets/About.h"
#include "data/sets/FolderCheck.h"

#include <CLI/CLI.hpp>

#include <iomanip>
#include <memory>
#include <ostream>
#include <string>

namespace orvane::kestrum::tools {

namespace {

constexpr const char* remedy = ": make the head first with \"kestrum data hrir --out DIR\".";

void tellFigures(const std::vector<SceneFigures>& figures, std::ostream& out) {
    out << std::fixed;
    for (const SceneFigures& scene : figures)
        out << "  " << std::left << std::setw(15) << scene.scene << std::right << std::showpos
            << std::setprecision(1) << scene.levelDb << std::noshowpos << " dB: T60 of the reverb alone "
            << std::setprecision(2) << scene.decaySeconds << " s (goal " << scene.decayTarget << "), C50 "
            << std::setprecision(1) << scene.clarity50Db << " dB (goal " << scene.clarity50Target
            << "), direct to all the rest " << scene.directToRestDb << " dB (goal "
            << scene.directToRestTarget << ").\n";
}

} // namespace

ResponseSet readMasterHead(const std::filesystem::path& folder) {
    const ResponseFile& file = responseFiles[1];
    static_assert(responseFiles[1].sampleRate == masterSampleRate);
    const FileVerdict verdict = checkResponseFile(file, folder);
    if (!verdict.sound)
        throw DataError("\"" + (folder / file.name).string() + "\" cannot serve, " + verdict.finding +
                        remedy);
    return readResponseSet(file, folder);
}

void writeRooms(const std::vector<ReverbEntry>& rooms, const std::string& about,
                const std::filesystem::path& folder) {
    withdrawRooms(folder);
    for (const ReverbFile& file : reverbFiles)
        writeReverbSet(reverbSetFor(file, rooms), folder);
    writeAbout(about, folder);
}

void makeRooms(const std::filesystem::path& folder, std::ostream& out) {
    const std::string about = aboutWithReverb(folder);
    const DiffuseHead head(readMasterHead(folder));
    std::size_t count = 0;
    std::vector<ReverbEntry> rooms = synthesiseRooms(head, [&](const RoomDescription& room) {
        out << "Room " << ++count << " of " << roomDescriptions().size() << ": " << room.name << ".\n"
            << std::flush;
    });
    out << "Levels, by rendering the Scenes:\n" << std::flush;
    tellFigures(calibrateLevels(rooms, folder), out);
    writeRooms(rooms, about, folder);
}

void runReverb(const ReverbRequest& request, std::ostream& out) {
    if (!std::filesystem::is_directory(request.folder))
        throw DataError("\"" + request.folder.string() + "\" is no folder" + remedy);
    if (aboutHeadphones(request.folder))
        throw DataError(
            "The head in \"" + request.folder.string() +
            "\" has headphones folded in, so rooms cannot be made from it: make the whole set anew with "
            "\"kestrum data hrir --name NAME --headphone-eq FILE\".");
    if (request.aboutOnly) {
        out << aboutWithReverb(request.folder);
        return;
    }
    makeRooms(request.folder, out);
    out << "Wrote OVNdata510.dat, OVNdata511.dat and OVNdata512.dat to \"" << request.folder.string()
        << "\".\n";
}

void addReverbCommand(CLI::App& data, std::ostream& out) {
    CLI::App* const command =
        data.add_subcommand("reverb", "Makes the plug-in's files of reverberant rooms for a head.");
    const auto request = std::make_shared<ReverbRequest>();
    command
        ->add_option("DIR", request->folder,
                     "Data folder with the head's files; the rooms' are put beside them")
        ->required()
        ->type_name("");
    command->add_flag("--about", request->aboutOnly, "Only print the about.json that the folder would carry");
    command->footer("Example:\n"
                    "  kestrum data reverb my-head");
    command->callback([request, &out] { runReverb(*request, out); });
}

} // namespace orvane::kestrum::tools
