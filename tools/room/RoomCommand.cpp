// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/RoomCommand.h"

#include "data/DataError.h"
#include "data/headphones/HeadphoneFold.h"
#include "data/reports/ReportPage.h"
#include "data/rooms/LateReverb.h"
#include "data/rooms/ReverbCalibration.h"
#include "data/rooms/ReverbCommand.h"
#include "data/sets/About.h"
#include "data/sets/SetStore.h"
#include "room/OwnRoom.h"
#include "room/PlainHead.h"
#include "room/RoomFolder.h"
#include "room/RoomReport.h"

#include <CLI/CLI.hpp>

#include <cmath>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace orvane::kestrum::tools {

namespace {

/// What about.json says about the room: enough to make it again.
RoomFacts factsOf(const OwnRoom& room, const RoomRequest& request) {
    std::string times;
    for (const double seconds : room.asked)
        times += (times.empty() ? "" : " ") + shortest(seconds);
    RoomFacts facts{{"scene", std::string(room.scene.name)}, {"t60", times}};
    if (room.measured) {
        facts.emplace_back("response", request.response.filename().string());
        facts.emplace_back("sha256", sha256OfFile(request.response));
    }
    if (room.box) {
        facts.emplace_back("volume", shortest(room.box->volume));
        facts.emplace_back("distance", shortest(room.distance));
    }
    facts.emplace_back("directOverRestDb", shortest(room.target.directToRestDb));
    return facts;
}

/// Levels are sought step by step: at the end of the range no better one was found.
void noteLevel(OwnRoom& room, const SceneFigures& level, const LevelRange& range) {
    constexpr double step = 0.1;
    const double off = level.directToRestDb - room.target.directToRestDb;
    if (level.levelDb < range.from + step || level.levelDb > range.to - step)
        room.notes.push_back("The level stands at the end of what a response may have (" +
                             fixedText(level.levelDb, 1) + " dB).");
    if (std::abs(off) > directToleranceDb)
        room.notes.push_back("The direct sound is " + fixedText(std::abs(off), 1) + " dB too " +
                             (off > 0 ? "strong" : "soft") +
                             " over the rest: the first 50 ms are mostly the Scene's own" +
                             (room.clarityAsked ? ", and clarity comes first." : "."));
}

/// Sets the level against the plain head; only then the room gets the headphones that its folder is for, as all the
/// others there have.
/// @return the figures at that level, where there are headphones that change them.
std::optional<SceneFigures> setLevel(OwnRoom& room, const PlainHead& plain) {
    const LevelRange range = ownRoomLevelRange(room.scene.room);
    const SceneFigures level =
        calibrateLevel(room.entry, room.target, range, room.clarityAsked, plain.folder);
    noteLevel(room, level, range);
    if (!plain.headphones)
        return std::nullopt;
    foldIntoRoom(room.entry, plain.headphones->curve, masterSampleRate);
    return level;
}

void requireSensible(const RoomRequest& request) {
    if (request.out.empty() == request.name.empty())
        throw DataError("Say where the room goes: name either a new folder, or a set with --name.");
    if (!request.report.empty())
        requireGnuplot();
}

/// Where the new data goes, looked at before any long work: a set of its own name, or nothing for a folder.
std::optional<StagedSet> requirePlace(const RoomRequest& request, const SetStore& store) {
    if (request.name.empty()) {
        requireFree(request.out);
        return std::nullopt;
    }
    requireSetName(request.name);
    store.requireKind(request.name, SetKind::ownRoom);
    return store.stage();
}

void writeReport(const OwnRoom& room, const RoomFindings& findings, const std::filesystem::path& folder,
                 std::ostream& out) {
    writeRoomReport(room, findings, folder);
    out << "Report: " << (folder / "index.html").string() << "\n";
}

} // namespace

void runRoom(const RoomRequest& request, std::ostream& out) {
    const SetStore store = SetStore::ofThisMachine();
    requireSensible(request);
    const std::filesystem::path source = requireSource(request.data.empty() ? store.link() : request.data);
    std::optional<StagedSet> staged = requirePlace(request, store);
    const PlainHead plain = plainHeadOf(source, store);
    const std::filesystem::path folder = staged ? staged->folder() : request.out;
    const DiffuseHead head(readMasterHead(plain.folder));
    OwnRoom room = makeOwnRoom(request, head);
    const std::optional<SceneFigures> plainLevel = setLevel(room, plain);
    if (staged)
        fillRoomFolder(source, folder, room.entry, factsOf(room, request));
    else
        writeRoomFolder(source, folder, room.entry, factsOf(room, request));
    const RoomFindings findings = findRoom(room, plainLevel, head, folder);
    tellRoom(room, findings, out);
    const std::string missed = findings.missed(room);
    const std::string verdict = missed.empty() ? "all met" : "not met: " + missed;
    // The report comes last: should it fail, the room is there.
    if (staged) {
        const std::filesystem::path set = store.publish(std::move(*staged), request.name);
        out << "Wrote the set \"" << request.name << "\" in \"" << set.string() << "\": " << verdict
            << ". Let the plug-in read it with \"kestrum data use " << request.name << "\".\n";
    } else {
        out << "Wrote \"" << folder.string() << "\": " << verdict << ".\n";
    }
    if (!request.report.empty())
        writeReport(room, findings, request.report, out);
}

void addRoomCommand(CLI::App& program, std::ostream& out) {
    CLI::App* const command =
        program.add_subcommand("room", "Puts a room of your own into a copy of the data folder.");
    const auto request = std::make_shared<RoomRequest>();
    const auto add = [command](const char* group, const char* name, auto& target, const char* type,
                               const char* text) {
        return command->add_option(name, target, text)->type_name(type)->group(group);
    };
    command->add_option("OUT", request->out, "Folder to make; must not hold anything yet")->type_name("");
    add("Folders", "--name", request->name, "NAME",
        "Make a set of that name among the machine's, in place of OUT");
    add("Folders", "--data", request->data, "DIR",
        "Data folder to begin with; default: the one that the plug-in reads");
    add("Folders", "--report", request->report, "DIR", "Folder for a page with plots (needs gnuplot)");
    add("Folders", "--scene", request->scene, "NAME", "Scene that is to play the room")->required();
    add("Room from figures", "--t60", request->t60, "S[,S...]",
        "T60 in seconds: one for the middle, or seven, 125 Hz to 8 kHz")
        ->delimiter(',')
        ->allow_extra_args(false) // or it would take the folder's name as well
        ->option_text("S[,S...]");
    add("Room from figures", "--volume", request->volume, "M3", "Volume in cubic metres");
    add("Room from figures", "--walls", request->walls, "M,M,M,M,M,M",
        "Metres from you to front, back, left, right, ceiling, floor")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->option_text("M,M,M,M,M,M");
    add("Room from a measurement", "--ir", request->response, "FILE",
        "Impulse response, mono or stereo (two ears), with its direct sound");
    command
        ->add_flag("--head-coherence", request->headCoherence,
                   "Give a stereo response this head's coherence, too")
        ->group("Room from a measurement");
    add("Level", "--distance", request->distance, "M",
        "To the loudspeakers; default: 2, less in a small room");
    add("Level", "--directivity", request->directivityDb, "DB", "Of the loudspeakers")->capture_default_str();
    add("Level", "--direct-over-rest", request->directOverRestDb, "DB",
        "Direct sound over all the rest; default: reckoned, or measured on the file");
    command->footer("Examples:\n"
                    "  kestrum room my-room --scene \"Mix Room\" --t60 0.3 --volume 60\n"
                    "  kestrum room my-room --scene \"Living Room\" --t60 0.6,0.5,0.4,0.4,0.38,0.35,0.3 \\\n"
                    "               --walls 2.2,2.6,1.9,2.3,1.4,1.1 --report my-room-report\n"
                    "  sudo kestrum room --name church --scene \"Acoustic Venue\" --ir church.wav");
    command->callback([request, &out] { runRoom(*request, out); });
}

void addRoomCommand(CLI::App& program) { addRoomCommand(program, std::cout); }

} // namespace orvane::kestrum::tools
