// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/RoomReport.h"

#include "data/reports/ReportPage.h"
#include "data/rooms/LateReverb.h"
#include "room/RoomPlots.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <ostream>

namespace orvane::kestrum::tools {

namespace {

std::string signedText(double number, int decimals) {
    const std::string text = fixedText(number, decimals);
    const bool isNought = text.find_first_not_of("0.") == std::string::npos;
    return number > 0 && !isNought ? "+" + text : text;
}

/// For the terminal, whose columns are told in bytes: a minus that is one.
std::string plain(double number, int decimals) {
    std::string text = fixedText(number, decimals);
    const std::string minus = "−";
    if (text.starts_with(minus))
        text.replace(0, minus.size(), "-");
    return text;
}

std::string originText(const OwnRoom& room) {
    if (!room.measured)
        return "parameters";
    const ImpulseFile& file = room.measured->file;
    return std::string(file.binaural ? "stereo" : "mono") + " response of " + fixedText(file.seconds, 2) +
           " s at " + shortest(file.sampleRate) + " Hz, the direct sound " +
           fixedText(1000 * file.secondsToOnset, 1) + " ms behind its start";
}

std::string sizeText(const OwnRoom& room) {
    if (!room.box)
        return "not told";
    const double middle = (room.wanted[2] + room.wanted[3]) / 2;
    return fixedText(room.box->volume, 0) + " m³, " + fixedText(room.box->surface, 0) + " m²" +
           (room.box->walls ? "" : " (sides 1 : 1.26 : 1.59)") + ", its sides swallow " +
           fixedText(100 * meanAbsorption(*room.box, middle), 0) + " % (Eyring); loudspeakers " +
           fixedText(room.distance, 1) + " m away, critical distance " + fixedText(room.criticalDistance, 1) +
           " m";
}

std::string sceneText(const OwnRoom& room) {
    std::string text = "\"" + std::string(room.scene.name) + "\", room " + std::to_string(room.scene.room) +
                       ", entry " + std::to_string(room.scene.entry) + " of the files, " +
                       fixedText(room.scene.lengthSeconds, 2) + " s";
    for (const std::string_view other : room.scene.sharedWith)
        text += "; the Scene \"" + std::string(other) + "\" plays it too";
    return text;
}

std::string timesText(const OwnRoom& room) {
    return "begins " + fixedText(room.description.onsetMs, 1) + " ms behind the direct sound, " +
           (room.description.earlyDb < 0
                ? fixedText(-room.description.earlyDb, 0) + " dB softer at first to leave "
                                                            "the Scene's own reflections "
                                                            "their place, "
                : std::string()) +
           "full from " + fixedText(room.description.mixingMs, 0) + " ms on";
}

/// Name and value of each fact, as terminal and page show them.
std::vector<std::pair<std::string, std::string>> facts(const OwnRoom& room, const RoomFindings& findings) {
    const SceneMeasures& measures = findings.measures;
    const CoherenceError error = coherenceError(findings.coherence, room.coherence);
    std::vector<std::pair<std::string, std::string>> all{
        {"Scene", sceneText(room)},
        {"Made from", originText(room)},
        {"Size", sizeText(room)},
        {"Reverb", timesText(room)},
        {"Direct over the rest", signedText(findings.directToRestDb(), 1) + " dB (wanted " +
                                     signedText(room.target.directToRestDb, 1) + ")"},
        {"Clarity", "C50 " + signedText(findings.clarity50Db(), 1) + " dB (" +
                        (room.clarityAsked ? "wanted " : "an even decay at that level: ") +
                        signedText(room.target.clarity50Db, 1) + "), C80 " +
                        signedText(measures.clarity80Db, 1) + " dB"},
        {"Coherence",
         "at most " + fixedText(error.low, 2) + " off below 400 Hz, " + fixedText(error.high, 2) + " above"},
        {"Level", "peak of the stored response " + signedText(findings.peakDb, 1) + " dB"}};
    if (findings.plainLevel)
        all.emplace_back("Headphones",
                         "folded in after the level was set; direct over the rest and C50 are those "
                         "without them, with them " +
                             signedText(measures.directToRestDb, 1) + " dB and " +
                             signedText(measures.clarity50Db, 1) + " dB");
    return all;
}

double peakDbOf(const ReverbEntry& entry) {
    double peak = 0;
    for (const Samples& ear : entry.ears)
        for (const double sample : ear)
            peak = std::max(peak, std::abs(sample));
    return 20 * std::log10(peak);
}

std::string tableOf(const OwnRoom& room, const RoomFindings& findings) {
    std::string text =
        "<table><tr><th>Octave</th><th class=\"number\">T60 of the room</th><th class=\"number\">"
        "asked of the Scene</th><th class=\"number\">got</th><th class=\"number\">off</th></tr>\n";
    for (std::size_t octave = 0; octave < room.asked.size(); ++octave) {
        const double got = findings.measures.reverbDecays[octave].seconds;
        const std::string style = findings.decayWithin(octave, room) ? "number" : "number missed";
        const auto cell = [](const std::string& classes, const std::string& value) {
            std::string element = "<td class=\"";
            element += classes;
            element += "\">";
            element += value;
            return element += "</td>";
        };
        text += "<tr><td>" + shortest(roomOctavesHz[octave]) + " Hz</td>";
        text += cell("number", fixedText(room.wanted[octave], 2) + " s");
        text += cell("number", fixedText(room.asked[octave], 2) + " s");
        text += cell(style, fixedText(got, 2) + " s");
        text += cell(style, signedText(100 * (got / room.asked[octave] - 1), 0) + " %") + "</tr>\n";
    }
    return text + "</table>\n";
}

constexpr const char* methods =
    "<section><h2>How it is measured</h2>\n<p>The Scene is rendered by the plug-in's own engine from the new "
    "folder: an impulse on the left loudspeaker of \"2.0 +/-30°\", 48 kHz, Ambience 50. T60 is T30 of ISO "
    "3382 "
    "(T20 where the decay is too short) of the reverb alone, as the Scene lets it be heard, in octave bands. "
    "Coherence is that of the reverb from its full density on, without lag, in third-octave bands. Clarity "
    "and "
    "direct sound are those of the whole. A T60 within 10 %, a coherence within 0.1 below and 0.15 above "
    "400 Hz, a direct sound within 1 dB and a C50 within 1.5 dB count as met; a decay that the Scene had to "
    "shorten does not.</p></section>\n";

} // namespace

double RoomFindings::directToRestDb() const {
    return plainLevel ? plainLevel->directToRestDb : measures.directToRestDb;
}

double RoomFindings::clarity50Db() const {
    return plainLevel ? plainLevel->clarity50Db : measures.clarity50Db;
}

bool RoomFindings::directWithin(const OwnRoom& room) const {
    return std::abs(directToRestDb() - room.target.directToRestDb) <= directToleranceDb;
}

bool RoomFindings::clarityWithin(const OwnRoom& room) const {
    return !room.clarityAsked || std::abs(clarity50Db() - room.target.clarity50Db) <= clarityToleranceDb;
}

bool RoomFindings::decayWithin(std::size_t octave, const OwnRoom& room) const {
    return std::abs(measures.reverbDecays[octave].seconds - room.asked[octave]) <=
           decayTolerance * room.asked[octave];
}

std::string RoomFindings::missed(const OwnRoom& room) const {
    std::vector<std::string> names;
    if (room.asked != room.wanted)
        names.emplace_back("length");
    for (std::size_t octave = 0; octave < room.asked.size(); ++octave)
        if (!decayWithin(octave, room))
            names.push_back("T60 at " + shortest(roomOctavesHz[octave]) + " Hz");
    const CoherenceError error = coherenceError(coherence, room.coherence);
    if (error.low > coherenceToleranceLow)
        names.emplace_back("coherence below 400 Hz");
    if (error.high > coherenceToleranceHigh)
        names.emplace_back("coherence above 400 Hz");
    if (!directWithin(room))
        names.emplace_back("direct sound over the rest");
    if (!clarityWithin(room))
        names.emplace_back("clarity");
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

RoomFindings findRoom(const OwnRoom& room, const std::optional<SceneFigures>& plainLevel,
                      const DiffuseHead& head, const std::filesystem::path& folder) {
    const SceneProbe probe(folder);
    RoomFindings findings;
    findings.measures = measureScene(probe, room.scene.name);
    const double sampleRate = probe.settings().sampleRate;
    findings.coherence = lateCoherence(findings.measures.responses.reverb, sampleRate,
                                       static_cast<double>(findings.measures.onset) / sampleRate +
                                           room.description.mixingMs / 1000);
    findings.headField = head.coherence();
    findings.plainLevel = plainLevel;
    findings.peakDb = peakDbOf(room.entry);
    return findings;
}

void tellRoom(const OwnRoom& room, const RoomFindings& findings, std::ostream& out) {
    for (const auto& [name, value] : facts(room, findings))
        out << name << ": " << value << ".\n";
    out << "T60 of the reverb as heard, s:\n  Hz      ";
    for (const double centre : roomOctavesHz)
        out << std::setw(7) << shortest(centre);
    const auto row = [&out](const char* name, const auto& value) {
        out << "\n  " << std::left << std::setw(8) << name << std::right;
        for (std::size_t octave = 0; octave < roomOctavesHz.size(); ++octave)
            out << std::setw(7) << plain(value(octave), 2);
    };
    row("room", [&](std::size_t octave) { return room.wanted[octave]; });
    if (room.asked != room.wanted)
        row("asked", [&](std::size_t octave) { return room.asked[octave]; });
    row("got", [&](std::size_t octave) { return findings.measures.reverbDecays[octave].seconds; });
    out << "\n";
    for (const std::string& note : room.notes)
        out << "Note: " << note << "\n";
}

void writeRoomReport(const OwnRoom& room, const RoomFindings& findings, const std::filesystem::path& folder) {
    const std::filesystem::path plotFolder = folder / "plots";
    const std::vector<Plot> plots = writeRoomPlots(room, findings, plotFolder);
    drawPlots(plots, plotFolder);
    std::string page = pageHead("Own room in the Scene " + std::string(room.scene.name));
    const std::string missed = findings.missed(room);
    page +=
        missed.empty() ? "<p>All met.</p>\n" : "<p class=\"missed\">Not met: " + escaped(missed) + ".</p>\n";
    page += "<ul>\n";
    for (const std::string& note : room.notes)
        page += "<li>" + escaped(note) + "</li>\n";
    page += "</ul>\n";
    page += "<table>\n";
    for (const auto& [name, value] : facts(room, findings))
        page += "<tr><td class=\"name\">" + escaped(name) + "</td><td>" + escaped(value) + "</td></tr>\n";
    page += "</table>\n" + tableOf(room, findings) + "<div class=\"pair\">";
    for (const Plot& plot : plots)
        page += figureElement(plot, plotFolder);
    writePage(page + "</div>\n" + methods + "</body>\n</html>\n", folder);
}

} // namespace orvane::kestrum::tools
