// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/RoomPlots.h"

#include "data/DataError.h"
#include "data/rooms/LateReverb.h"

#include <algorithm>
#include <array>
#include <system_error>

namespace orvane::kestrum::tools {

namespace {

constexpr int width = 560;
constexpr int height = 300;
constexpr double rate = masterSampleRate; ///< Of the probe as of the rooms.

std::string line(std::string_view colour, const std::string& title, double lineWidth = 2) {
    return " with lines lw " + shortest(lineWidth) + " lc rgb '" + std::string(colour) + "' title '" + title +
           "'";
}

std::string points(std::string_view colour, const std::string& title) {
    return " with linespoints pt 7 ps 0.7 lw 2 lc rgb '" + std::string(colour) + "' title '" + title + "'";
}

constexpr const char* frequencyAxis =
    "set logscale x 2; set grid; set xlabel 'frequency (Hz)'\n"
    "set xtics (125, 250, 500, '1k' 1000, '2k' 2000, '4k' 4000, '8k' 8000)\n";

Plot decayTimePlot(const OwnRoom& room, const RoomFindings& findings, const std::filesystem::path& folder) {
    PlotTable table(folder, "t60.txt");
    for (std::size_t octave = 0; octave < roomOctavesHz.size(); ++octave)
        table.row({roomOctavesHz[octave], room.wanted[octave], room.asked[octave],
                   findings.measures.reverbDecays[octave].seconds});
    const bool bounded = room.asked != room.wanted;
    return {"t60", "T60 of the reverb as heard, beside the room's own.",
            std::string(frequencyAxis) +
                "set xrange [100:10000]; set yrange [0:*]; set ylabel 'T60 (s)'; set key bottom left\n"
                "plot 't60.txt' using 1:2" +
                points(colours::black, "of the room") +
                (bounded ? ", '' using 1:3" + points(colours::orange, "as far as the Scene holds it") : "") +
                ", '' using 1:4" + points(colours::blue, "got"),
            width, height};
}

/// Adds a decay to a table as a block of its own, from a sample on.
void addDecay(PlotTable& table, const Samples& decayDb, std::size_t from) {
    constexpr std::size_t step = 96;
    for (std::size_t index = from; index < decayDb.size(); index += step)
        table.row({static_cast<double>(index - from) / rate, decayDb[index]});
    if (decayDb.size() <= from)
        table.row({0, -200}); // outside the plot: an empty block would be no block
    table.nextIndex();
}

std::string timeAxis(const OwnRoom& room) {
    return "set grid; set xlabel 'behind the direct sound (s)'; set ylabel 'energy still to come (dB)'\n"
           "set yrange [-60:0]; set xrange [0:" +
           shortest(room.scene.lengthSeconds) + "]; set key top right\n";
}

Plot decayPlot(const OwnRoom& room, const RoomFindings& findings, const std::filesystem::path& folder) {
    PlotTable table(folder, "decay.txt");
    addDecay(table, findings.measures.decayDb, findings.measures.onset);
    addDecay(table, energyDecayDb(findings.measures.responses.reverb, rate), findings.measures.onset);
    if (room.measured)
        addDecay(table, energyDecayDb(room.measured->file.ears, rate), 0);
    return {"decay", "Energy decay of the whole Scene and of the reverb alone, all frequencies.",
            timeAxis(room) + "plot 'decay.txt' index 0" + line(colours::black, "whole Scene") +
                ", '' index 1" + line(colours::blue, "reverb alone") +
                (room.measured ? ", '' index 2" + line(colours::orange, "the file") : ""),
            width, height};
}

Plot octavePlot(const OwnRoom& room, const RoomFindings& findings, const std::filesystem::path& folder) {
    constexpr std::array<std::size_t, 4> octaves{0, 2, 4, 6};
    constexpr std::array<std::string_view, 4> lines{colours::black, colours::blue, colours::green,
                                                    colours::vermilion};
    PlotTable table(folder, "octaves.txt");
    std::string drawn;
    for (std::size_t index = 0; index < octaves.size(); ++index) {
        const EarResponses& reverb = findings.measures.responses.reverb;
        EarResponses band;
        for (std::size_t ear = 0; ear < band.size(); ++ear)
            band[ear] = octaveBand(reverb[ear], rate, roomOctavesHz[octaves[index]]);
        addDecay(table, energyDecayDb(band, rate),
                 findings.measures.onset + band[0].size() - reverb[0].size());
        drawn += (index == 0 ? "'octaves.txt'" : ", ''") + std::string(" index ") + std::to_string(index) +
                 line(lines[index], shortest(roomOctavesHz[octaves[index]]) + " Hz");
    }
    return {"octaves", "Energy decay of the reverb alone, in octaves.", timeAxis(room) + "plot " + drawn,
            width, height};
}

Plot coherencePlot(const OwnRoom& room, const RoomFindings& findings, const std::filesystem::path& folder) {
    PlotTable table(folder, "coherence.txt");
    for (std::size_t band = 0; band < findings.coherence.size(); ++band)
        table.row({findings.coherence[band].centreHz, findings.coherence[band].zeroLag,
                   room.coherence[band].zeroLag, findings.headField[band].zeroLag});
    return {"coherence", "Coherence between the ears, third-octave bands.",
            std::string(frequencyAxis) +
                "set xrange [90:10000]; set yrange [-0.5:1]; set ylabel 'coherence'; set key top right\n"
                "plot 'coherence.txt' using 1:4" +
                line(colours::grey, "this head, sound from everywhere", 4) + ", '' using 1:3" +
                points(colours::black, "wanted") + ", '' using 1:2" + points(colours::blue, "got"),
            width, height};
}

} // namespace

std::vector<Plot> writeRoomPlots(const OwnRoom& room, const RoomFindings& findings,
                                 const std::filesystem::path& folder) {
    std::error_code failure;
    std::filesystem::create_directories(folder, failure);
    if (failure)
        throw DataError("The report cannot be written to \"" + folder.string() +
                        "\": give a folder that you may write to.");
    return {decayTimePlot(room, findings, folder), decayPlot(room, findings, folder),
            octavePlot(room, findings, folder), coherencePlot(room, findings, folder)};
}

} // namespace orvane::kestrum::tools
