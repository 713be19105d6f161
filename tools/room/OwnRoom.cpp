// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/OwnRoom.h"

#include "data/DataError.h"
#include "data/reports/ReportPage.h"
#include "data/rooms/DecaySearch.h"
#include "data/rooms/LateReverb.h"
#include "data/rooms/ReverbBuilder.h"
#include "parameters/core/Scene.h"
#include "render/Names.h"
#include "room/MeasuredBands.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvane::kestrum::tools {

namespace {

constexpr double holdsPerLength = 1.3; ///< Nine tenths of the length are then 41 dB.

std::string listed(const std::vector<std::string_view>& names) {
    std::string text;
    for (const std::string_view name : names)
        text += (text.empty() ? "\"" : ", \"") + std::string(name) + "\"";
    return text;
}

std::vector<std::string_view> scenesWithReverb() {
    std::vector<std::string_view> names;
    for (const core::Scene::Preset& preset : core::Scene::presets())
        if (preset.reverbOn)
            names.push_back(preset.name);
    return names;
}

/// Scenes that hold a decay.
std::vector<std::string_view> scenesThatHold(double seconds) {
    std::vector<std::string_view> names;
    for (const std::string_view name : scenesWithReverb())
        if (longestDecay(reverbScene(std::string(name))) >= seconds)
            names.push_back(name);
    return names;
}

/// As much of the wanted decay as the Scene holds.
void boundDecay(OwnRoom& room) {
    const double longest = longestDecay(room.scene);
    room.asked = room.wanted;
    for (double& seconds : room.asked)
        seconds = std::min(seconds, longest);
    const double most = std::ranges::max(room.wanted);
    if (most <= longest)
        return;
    const auto others = scenesThatHold(most);
    room.notes.push_back("The Scene's place in the files is " + fixedText(room.scene.lengthSeconds, 2) +
                         " s long and holds a T60 of " + fixedText(longest, 2) + " s; the room's " +
                         fixedText(most, 2) + " s are shortened to that" +
                         (others.empty() ? std::string(" (no Scene holds more).")
                                         : " (" + listed(others) + " would hold them)."));
}

/// The Scene's own description, with the room's times.
void describe(OwnRoom& room) {
    constexpr double directMs = 2.5; // what a measured direct sound may last
    constexpr double latestShare = 0.3;
    RoomDescription& description = room.description;
    description = roomDescription(room.scene.room);
    description.name = "own room";
    description.slaps = {};
    description.boomDb = 0;
    description.t60 = room.asked;
    if (room.box) {
        description.volumeCubicMetres = room.box->volume;
        description.onsetMs = firstReflectionMs(*room.box, room.distance);
        description.mixingMs = mixingTimeMs(room.box->volume);
    }
    if (room.measured)
        description.onsetMs = std::max(description.onsetMs, directMs);
    const double latest = 1000 * latestShare * room.scene.lengthSeconds;
    description.mixingMs = std::min(description.mixingMs, latest);
    description.onsetMs = std::min(description.onsetMs, description.mixingMs / 2);
}

void setTarget(OwnRoom& room, const RoomRequest& request) {
    const double middle = (room.wanted[2] + room.wanted[3]) / 2;
    const double asked = (room.asked[2] + room.asked[3]) / 2;
    double direct = 0;
    double clarity = 0;
    if (room.measured && !request.directOverRestDb) {
        direct = room.measured->directOverRestDb;
        clarity = room.measured->clarity50Db;
    } else {
        direct = request.directOverRestDb ? *request.directOverRestDb
                                          : 20 * std::log10(room.criticalDistance / room.distance);
        clarity = statisticalClarityDb(direct, middle);
    }
    room.clarityAsked = !request.directOverRestDb; // a level that was asked for is not bargained with
    room.target = {room.scene.name,
                   static_cast<int>(room.scene.entry),
                   room.description.volumeCubicMetres,
                   asked,
                   clarity,
                   direct,
                   room.description.mixingMs / 1000};
}

void requireLevel(const RoomRequest& request) {
    constexpr double farthestDb = 60;
    if (request.directOverRestDb && !(std::abs(*request.directOverRestDb) <= farthestDb))
        throw DataError("A direct sound " + shortest(*request.directOverRestDb) +
                        " dB over the rest is no use: give -60 to 60 dB with --direct-over-rest.");
    constexpr double mostDirected = 20;
    if (!(request.directivityDb >= 0 && request.directivityDb <= mostDirected))
        throw DataError("A directivity of " + shortest(request.directivityDb) +
                        " dB is no loudspeaker's: give 0 to 20 dB with --directivity.");
}

void setSize(OwnRoom& room, const RoomRequest& request) {
    const bool given = request.volume || !request.walls.empty();
    if (!given && room.measured)
        return;
    room.box = roomBox(request.volume, request.walls);
    if (room.box->walls && !room.box->sizedByWalls())
        room.notes.push_back("The walls make a box of " + fixedText(room.box->walls->volume(), 0) +
                             " m3, the room has " + fixedText(room.box->volume, 0) +
                             " m3: its reverb follows the latter, its first reflection the walls.");
    room.distance = request.distance.value_or(defaultDistance(*room.box));
    requireInside(*room.box, room.distance);
    requirePossible(*room.box, room.wanted);
    const double middle = (room.wanted[2] + room.wanted[3]) / 2;
    room.criticalDistance = criticalDistance(*room.box, middle, request.directivityDb);
}

std::string bandList(const std::vector<double>& centres) {
    std::string text;
    for (const double centre : centres)
        text += (text.empty() ? "" : ", ") + fixedText(centre, 0);
    return text + " Hz";
}

void noteFile(OwnRoom& room) {
    const MeasuredRoom& measured = *room.measured;
    if (measured.file.dualMono)
        room.notes.emplace_back("Both channels of the file are the same: it is taken as mono.");
    if (measured.file.cutAtSeconds > 0)
        room.notes.push_back("Only the first " + fixedText(measured.file.cutAtSeconds, 0) +
                             " s behind the direct sound are used.");
    std::vector<double> guessed;
    for (std::size_t octave = 0; octave < measured.told.size(); ++octave)
        if (!measured.told[octave])
            guessed.push_back(roomOctavesHz[octave]);
    if (!guessed.empty())
        room.notes.push_back("The file does not tell the decay at " + bandList(guessed) +
                             ": it is taken from the next octave.");
    double least = room.scene.lengthSeconds;
    for (std::size_t octave = 0; octave < measured.told.size(); ++octave)
        if (measured.told[octave])
            least = std::min(least, measured.kneeSeconds[octave]);
    if (least < 0.95 * room.scene.lengthSeconds)
        room.notes.push_back(
            "The decay meets the file's noise or end " + fixedText(least, 2) +
            " s behind the direct sound at the earliest: from there each band goes on as noise with "
            "its own slope.");
}

void makeFromResponse(OwnRoom& room, const RoomRequest& request, const DiffuseHead& head) {
    // The decay is undone as it was measured and laid on again as the Scene holds it.
    RoomDescription measured = room.description;
    measured.t60 = room.wanted;
    const MeasuredBands made = measuredBands(*room.measured, measured, head, request.headCoherence);
    room.coherence = made.coherence;
    if (!made.boundedHz.empty())
        room.notes.push_back("The file's ears are less like this head's than heads are like each other at " +
                             bandList(made.boundedHz) + ": bounded there.");
    if (!made.madeHz.empty())
        room.notes.push_back("The file holds no decay at " + bandList(made.madeHz) +
                             ": these bands are made from their neighbours.");
    room.entry.ears = shapedReverb(made.bands, room.description, made.coherence,
                                   heardThroughDecay(room.scene.decayPercent));
}

} // namespace

ReverbScene reverbScene(const std::string& name) {
    const render::Choice* const choice = render::sceneChoices().search(name);
    const auto presets = core::Scene::presets();
    const auto preset = choice == nullptr
                            ? presets.end()
                            : std::ranges::find(presets, choice->name, &core::Scene::Preset::name);
    if (preset == presets.end())
        throw DataError("There is no Scene \"" + name + "\": name one of " + listed(scenesWithReverb()) +
                        " with --scene.");
    if (!preset->reverbOn)
        throw DataError("The Scene \"" + std::string(preset->name) + "\" has no reverb: name one of " +
                        listed(scenesWithReverb()) + " with --scene.");
    ReverbScene scene{preset->name, static_cast<int>(preset->roomType), 0, preset->reverbDecayPercent, 0, {}};
    const RoomDescription& description = roomDescription(scene.room);
    scene.entry = entryOf(description);
    scene.lengthSeconds = static_cast<double>(frameCountAt(description, masterSampleRate)) / masterSampleRate;
    for (const core::Scene::Preset& other : presets)
        if (other.reverbOn && other.roomType == preset->roomType && other.name != preset->name)
            scene.sharedWith.push_back(other.name);
    return scene;
}

double longestDecay(const ReverbScene& scene) {
    constexpr std::size_t steps = 1000;
    constexpr double reserve = 0.95; // single bands are less even than this
    constexpr double rateRatio = 1.05;
    const std::span<const float> gains = heardThroughDecay(scene.decayPercent);
    double longest = 0;
    for (double t60 = scene.lengthSeconds / 4; t60 < 4 * scene.lengthSeconds; t60 *= rateRatio) {
        EnergyCourse course{Samples(steps), scene.lengthSeconds / steps};
        for (std::size_t step = 0; step < steps; ++step) {
            const double gain = gains.empty() ? 1.0 : static_cast<double>(gains[step * gains.size() / steps]);
            course.energies[step] =
                gain * gain * std::pow(10.0, -6 * course.stepSeconds * static_cast<double>(step) / t60);
        }
        longest = std::max(longest, reverberationTime(course));
    }
    return std::min(reserve * longest, holdsPerLength * scene.lengthSeconds);
}

OwnRoom makeOwnRoom(const RoomRequest& request, const DiffuseHead& head) {
    if (request.t60.empty() == request.response.empty())
        throw DataError("Say what the room is: give either --t60 or a response with --ir.");
    requireLevel(request);
    OwnRoom room;
    room.scene = reverbScene(request.scene);
    if (request.response.empty()) {
        room.wanted = octaveTimes(request.t60);
    } else {
        const bool sized = request.volume || !request.walls.empty();
        const double mixing = sized ? mixingTimeMs(roomBox(request.volume, request.walls).volume)
                                    : roomDescription(room.scene.room).mixingMs;
        room.measured = measureRoom(readImpulseFile(request.response), mixing);
        room.wanted = room.measured->t60;
    }
    setSize(room, request);
    boundDecay(room);
    describe(room);
    setTarget(room, request);
    room.entry.room = room.scene.room;
    if (room.measured) {
        noteFile(room);
        makeFromResponse(room, request, head);
    } else {
        room.coherence = head.coherence();
        room.entry.ears = lateReverb(room.description, head, heardThroughDecay(room.scene.decayPercent));
    }
    return room;
}

} // namespace orvane::kestrum::tools
