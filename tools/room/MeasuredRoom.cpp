// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/MeasuredRoom.h"

#include "data/DataError.h"
#include "data/head/MeasuredSet.h"
#include "data/reports/ReportPage.h"
#include "data/rooms/LateReverb.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace orvane::kestrum::tools {

namespace {

constexpr double rate = masterSampleRate;

/// An octave of both ears, sample 0 at the direct sound: the filter's own ringing, which comes first, is left out.
EarResponses octaveOf(const EarResponses& ears, double centreHz) {
    EarResponses octave;
    for (std::size_t ear = 0; ear < ears.size(); ++ear) {
        const Samples whole = octaveBand(ears[ear], rate, centreHz);
        octave[ear].assign(whole.end() - static_cast<std::ptrdiff_t>(ears[ear].size()), whole.end());
    }
    return octave;
}

void measureDecays(MeasuredRoom& room) {
    const OctaveDecays decays = octaveDecayTimes(room.file.ears, rate);
    for (std::size_t octave = 0; octave < decays.size(); ++octave) {
        room.told[octave] =
            decays[octave].rangeDb > 0 && roomOctavesHz[octave] * std::sqrt(2.0) < room.file.sampleRate / 2;
        room.t60[octave] = decays[octave].seconds;
        const Samples decay = energyDecayDb(octaveOf(room.file.ears, roomOctavesHz[octave]), rate);
        room.kneeSeconds[octave] = static_cast<double>(decay.size()) / rate;
        room.kneeDb[octave] = decay.empty() ? 0.0 : std::max(0.0, -decay.back());
    }
}

void requireMiddle(const MeasuredRoom& room) {
    for (const std::size_t octave : {2U, 3U, 4U}) {
        if (!room.told[octave])
            throw DataError(
                "The response decays by only " + fixedText(room.kneeDb[octave], 0) + " dB at " +
                shortest(roomOctavesHz[octave]) +
                " Hz before its noise or its end, and 35 dB are needed: measure it louder, longer or "
                "with more repeats.");
        if (room.t60[octave] < shortestT60 || room.t60[octave] > longestT60)
            throw DataError("The response decays within " + fixedText(room.t60[octave], 3) + " s at " +
                            shortest(roomOctavesHz[octave]) +
                            " Hz, as no room does: give the impulse response of a room, its decay included.");
    }
}

/// Octaves that are not told decay as the nearest one that is, bent as rooms usually are.
void completeDecays(MeasuredRoom& room) {
    constexpr double longerBelow = 1.1;
    constexpr double shorterAbove = 0.88;
    for (std::size_t octave = 2; octave-- > 0;)
        if (!room.told[octave])
            room.t60[octave] = longerBelow * room.t60[octave + 1];
    for (std::size_t octave = 5; octave < room.t60.size(); ++octave)
        if (!room.told[octave])
            room.t60[octave] = shorterAbove * room.t60[octave - 1];
}

double energyBetween(const EarResponses& ears, std::size_t from, std::size_t to) {
    double sum = 0;
    for (const Samples& ear : ears)
        for (std::size_t frame = from; frame < std::min(to, ear.size()); ++frame)
            sum += ear[frame] * ear[frame];
    return sum;
}

void measureLevels(MeasuredRoom& room) {
    constexpr double directSeconds = 0.0025; // before the floor's reflection, for most set-ups
    constexpr double earlySeconds = 0.05;
    const std::size_t end = energyDecayDb(room.file.ears, rate).size();
    const auto ratioDb = [&](double seconds) {
        const auto border = static_cast<std::size_t>(seconds * rate);
        return 10 * std::log10(energyBetween(room.file.ears, 0, border) /
                               std::max(energyBetween(room.file.ears, border, end), 1e-300));
    };
    room.directOverRestDb = ratioDb(directSeconds);
    room.clarity50Db = ratioDb(earlySeconds);
}

} // namespace

MeasuredRoom measureRoom(ImpulseFile file, double mixingMs) {
    MeasuredRoom room;
    room.file = std::move(file);
    measureDecays(room);
    requireMiddle(room);
    completeDecays(room);
    measureLevels(room);
    if (room.file.binaural)
        room.coherence = lateCoherence(room.file.ears, rate, mixingMs / 1000);
    return room;
}

} // namespace orvane::kestrum::tools
