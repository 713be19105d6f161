// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/reports/HeadPlots.h"

#include "data/head/MeasuredSet.h"
#include "data/measures/Figures.h"

#include <algorithm>
#include <cmath>

namespace orvane::kestrum::tools {

namespace {

std::string rateName(const ResponseSet& set) { return shortest(set.file.sampleRate / 1000.0) + " kHz"; }

void addPoint(PlotTable& table, const InterauralPoint& point) {
    table.row({point.azimuthDegrees, point.delaySeconds * 1e6, point.levelsDb[0], point.levelsDb[1],
               point.levelsDb[2], point.levelsDb[3], point.levelsDb[4]});
}

/// One block per set, then the source's.
void writeInteraural(const ResponseSets& sets, std::span<const InterauralPoint> source,
                     const std::filesystem::path& folder) {
    PlotTable table(folder, "delay.txt");
    for (const ResponseSet& set : sets) {
        for (int azimuth = -180; azimuth <= 180; azimuth += gridStepDegrees)
            addPoint(table, interauralPoint(azimuth, set.responses[gridIndex(azimuth, 0)],
                                            set.file.sampleRate, set.file.flatToHz));
        table.nextIndex();
    }
    for (const InterauralPoint& point : source)
        addPoint(table, point);
}

Plot delayPlot(const ResponseSets& sets, bool withSource) {
    static constexpr std::array<const char*, 3> styles{"lw 1.5 lc rgb '#0072b2'", "dt 2 lc rgb '#009e73'",
                                                       "dt 3 lw 1.5 lc rgb '#d55e00'"};
    std::string script =
        "set xlabel 'azimuth (degrees, right positive)'; set ylabel 'left later than right (us)'\n"
        "set xrange [-180:180]; set xtics 30; set grid; set key top left\nplot ";
    for (std::size_t index = 0; index < sets.size(); ++index)
        script += (index > 0 ? ", 'delay.txt' index " : "'delay.txt' index ") + std::to_string(index) +
                  " using 1:2 with lines " + styles[index % styles.size()] + " title '" +
                  rateName(sets[index]) + "'";
    if (withSource)
        script += ", 'delay.txt' index " + std::to_string(sets.size()) +
                  " using 1:2 with points pt 6 ps 0.5 lc rgb '#000000' title 'source'";
    return {"delay",
            std::string("Time between the ears on the horizontal plane") +
                (withSource ? ", files beside source." : "."),
            script};
}

Plot levelPlot(const ResponseSets& sets, bool withSource) {
    std::string script = "set xlabel 'azimuth (degrees, right positive)'; set ylabel 'right over left (dB)'\n"
                         "set xrange [-180:180]; set xtics 30; set grid; set key outside right\n"
                         "array colour[5] = ['#000000', '#0072b2', '#009e73', '#d55e00', '#e69f00']\n"
                         "plot for [band=0:4] 'delay.txt' index 0 using 1:(column(3+band)) with lines lc rgb "
                         "colour[band+1] lw 1.5 "
                         "title word('500 1000 2000 4000 8000', band+1).' Hz'";
    if (withSource)
        script += ", for [band=0:4] 'delay.txt' index " + std::to_string(sets.size()) +
                  " using 1:(column(3+band)) with points pt 7 ps 0.25 lc rgb colour[band+1] notitle";
    return {"level",
            "Level between the ears on the horizontal plane in octave bands, " + rateName(sets[0]) +
                (withSource ? " file (lines) beside source (dots)." : " file."),
            script};
}

Plot writeSpectra(const ResponseSet& set, const std::filesystem::path& folder) {
    PlotTable table(folder, "spectra.txt");
    constexpr std::size_t size = 4096;
    RealTransform transform(size);
    constexpr std::array<std::array<int, 2>, 6> places{
        {{0, 0}, {-90, 0}, {90, 0}, {180, 0}, {0, 90}, {0, -90}}};
    std::array<Spectrum, 6> spectra;
    for (std::size_t index = 0; index < places.size(); ++index)
        spectra[index] =
            transform.forward(set.responses[gridIndex(places[index][0], places[index][1])][leftEar]);
    const auto level = [&](std::size_t place, std::size_t bin) {
        return 20 * std::log10(std::max(std::abs(spectra[place][bin]), 1e-6));
    };
    for (std::size_t bin = 1; bin < transform.binCount(); ++bin)
        table.row({static_cast<double>(bin) * set.file.sampleRate / static_cast<double>(size), level(0, bin),
                   level(1, bin), level(2, bin), level(3, bin), level(4, bin), level(5, bin)});
    return {
        "spectra",
        "Magnitude at the left ear, source in front, at either side, behind, above, and below (modelled), " +
            rateName(set) + " file.",
        R"(set xlabel 'frequency (Hz)'; set ylabel 'level (dB)'; set logscale x; set xrange [50:20000]; set yrange [-40:20]
set grid; set key bottom left
plot 'spectra.txt' using 1:2 with lines lw 1.5 lc rgb '#000000' title 'front', \
     '' using 1:3 with lines lw 1.5 lc rgb '#0072b2' title 'left side', \
     '' using 1:4 with lines lw 1.5 lc rgb '#d55e00' title 'right side', \
     '' using 1:5 with lines lw 1.5 lc rgb '#009e73' title 'back', \
     '' using 1:6 with lines lw 1.5 lc rgb '#e69f00' title 'top', \
     '' using 1:7 with lines dt 2 lc rgb '#999999' title 'below')"};
}

Plot writeDiffuse(const ResponseSets& sets, const std::filesystem::path& folder) {
    static constexpr std::array<const char*, 3> styles{"pt 7 lc rgb '#0072b2'", "pt 5 lc rgb '#009e73'",
                                                       "pt 9 lc rgb '#d55e00'"};
    PlotTable table(folder, "diffuse.txt");
    std::string script = "set xlabel 'frequency (Hz)'; set ylabel 'level (dB)'; set logscale x; set grid\n"
                         "set xrange [200:15000]; set yrange [*<-2:2<*]\nplot ";
    for (std::size_t index = 0; index < sets.size(); ++index) {
        const ResponseSet& set = sets[index];
        for (const BandLevel& band :
             diffuseBands(set.responses, gridWeights(), set.file.sampleRate, set.file.flatToHz))
            table.row({band.centreHz, band.levelDb});
        table.nextIndex();
        script += "'diffuse.txt' index " + std::to_string(index) + " using 1:2 with linespoints ps 0.4 " +
                  styles[index % styles.size()] + " title '" + rateName(set) + "', ";
    }
    script += "1 with lines dt 2 lc rgb '#999999' notitle, -1 with lines dt 2 lc rgb '#999999' notitle";
    return {"diffuse", "Diffuse field in third-octave bands: the files' distance from flat, and the goal.",
            script};
}

Plot writePair(const ResponseSet& set, const std::filesystem::path& folder) {
    PlotTable table(folder, "responses.txt");
    const auto& side = set.responses[gridIndex(90, 0)];
    for (std::size_t frame = 0; frame < set.file.length; ++frame)
        table.row({static_cast<double>(frame) * 1000 / set.file.sampleRate, side[leftEar][frame],
                   side[rightEar][frame]});
    return {"responses", "Responses of a source at the right side, " + rateName(set) + " file.",
            R"(set xlabel 'time (ms)'; set ylabel 'amplitude'; set grid
plot 'responses.txt' using 1:3 with lines lw 1.2 lc rgb '#0072b2' title 'right ear', \
     'responses.txt' using 1:2 with lines lw 1.2 lc rgb '#d55e00' title 'left ear')"};
}

} // namespace

InterauralPoint interauralPoint(double azimuthDegrees, const std::array<Samples, 2>& ears, double sampleRate,
                                double highestHz) {
    return {azimuthDegrees, interauralDelaySeconds(ears[leftEar], ears[rightEar], sampleRate),
            interauralLevelsDb(ears, sampleRate, highestHz)};
}

std::vector<Plot> writeHeadPlots(const ResponseSets& sets, std::span<const InterauralPoint> source,
                                 const std::filesystem::path& folder) {
    writeInteraural(sets, source, folder);
    return {delayPlot(sets, !source.empty()), levelPlot(sets, !source.empty()), writeSpectra(sets[0], folder),
            writeDiffuse(sets, folder), writePair(sets[0], folder)};
}

} // namespace orvane::kestrum::tools
