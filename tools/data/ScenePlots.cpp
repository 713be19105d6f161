// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/SceneReport.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace orvane::kestrum::tools {

namespace {

constexpr int halfWidth = 560;
constexpr int halfHeight = 300;

/// Where the tables go and what the plots are called.
struct Place {
    const SceneChapter& chapter;
    std::string anchor;
    std::string name(const std::string& plot) const { return anchor + "-" + plot; }
    std::string tableName(const std::string& plot) const { return name(plot) + ".txt"; }
    PlotTable table(const std::string& plot) const { return PlotTable(chapter.folder, tableName(plot)); }
};

/// Least and greatest of the samples between two instants, over `full`.
std::array<double, 2> extremes(const Samples& samples, std::size_t from, std::size_t to, double full) {
    std::array<double, 2> range{0, 0};
    for (std::size_t index = from; index < std::min(to, samples.size()); ++index) {
        range[0] = std::min(range[0], samples[index] / full);
        range[1] = std::max(range[1], samples[index] / full);
    }
    return range;
}

Plot waveformPlot(const Place& place, const SceneMeasures& measures) {
    constexpr double seconds = 0.1;
    constexpr double stepSeconds = 0.00025;
    const SceneResponses& responses = measures.responses;
    double full = 1e-9;
    for (const Samples& ear : responses.direct)
        for (const double sample : ear)
            full = std::max(full, std::abs(sample));
    PlotTable table = place.table("waveform");
    const double step = stepSeconds * place.chapter.sampleRate;
    for (int bin = 0; bin < static_cast<int>(seconds / stepSeconds); ++bin) {
        const auto from = static_cast<std::size_t>(bin * step) + measures.onset;
        const auto to = static_cast<std::size_t>((bin + 1) * step) + measures.onset;
        std::vector<double> row{bin * stepSeconds * 1000};
        for (std::size_t ear = 0; ear < 2; ++ear)
            for (const EarResponses* part : {&responses.reverb, &responses.reflections, &responses.direct})
                for (const double value : extremes((*part)[ear], from, to, full))
                    row.push_back(value);
        table.row(row);
    }
    const std::string file = "'" + place.tableName("waveform") + "'";
    const auto panel = [&](int firstColumn, const std::string& ear) {
        const auto part = [&](int column, std::string_view colour, const std::string& title) {
            return file + " using 1:" + std::to_string(column) + ":" + std::to_string(column + 1) +
                   " with filledcurves lc rgb '" + std::string(colour) + "' lw 0.8 title '" + title + "'";
        };
        return "set ylabel '" + ear + "'\nplot " + part(firstColumn, colours::sky, "reverb") + ", " +
               part(firstColumn + 2, colours::vermilion, "reflections") + ", " +
               part(firstColumn + 4, colours::black, "direct") + "\n";
    };
    return {place.name("waveform"),
            "Impulse, first 100 ms from the direct sound on; 1 is the direct sound's peak.",
            "set multiplot layout 2,1 margins 0.12,0.97,0.15,0.97 spacing 0,0.04\n"
            "set xrange [-1:100]; set yrange [-1.05:1.05]; set ytics 0.5; set grid; set format x ''\n"
            "set key top right horizontal\n" +
                panel(2, "left ear") + "unset key; set format x '%g'; set xlabel 'time (ms)'\n" +
                panel(8, "right ear") + "unset multiplot",
            halfWidth, halfHeight};
}

Samples thinned(const Samples& curve, double sampleRate, double stepSeconds) {
    Samples points;
    for (double place = 0; place < static_cast<double>(curve.size()); place += stepSeconds * sampleRate)
        points.push_back(curve[static_cast<std::size_t>(place)]);
    return points;
}

/// Decays are drawn on one of two scales, so that rooms of a kind can be compared.
double decayScaleSeconds(const SceneMeasures& measures) {
    return measures.target && measures.target->decaySeconds > 0.6 ? 2.5 : 0.6;
}

Plot decayPlot(const Place& place, const SceneMeasures& measures) {
    constexpr std::array<std::size_t, 4> octaves{0, 3, 5, 6};
    const double sampleRate = place.chapter.sampleRate;
    const double stepSeconds = decayScaleSeconds(measures) / 300;
    std::vector<Samples> curves{thinned(measures.decayDb, sampleRate, stepSeconds)};
    for (const std::size_t octave : octaves) {
        EarResponses band;
        for (std::size_t ear = 0; ear < band.size(); ++ear)
            band[ear] = octaveBand(measures.responses.full[ear], sampleRate, roomOctavesHz[octave]);
        Samples curve = energyDecayDb(band, sampleRate);
        // The filter rings ahead of the sound: that time is no part of the decay.
        const std::size_t lead = band[0].size() - measures.responses.full[0].size();
        curve.erase(curve.begin(), curve.begin() + static_cast<std::ptrdiff_t>(std::min(lead, curve.size())));
        curves.push_back(thinned(curve, sampleRate, stepSeconds));
    }
    PlotTable table = place.table("decay");
    for (const Samples& curve : curves) {
        for (std::size_t index = 0; index < curve.size(); ++index)
            table.row({static_cast<double>(index) * stepSeconds, curve[index]});
        if (curve.empty())
            table.row({0, -200}); // outside the plot: an empty block would be no block
        table.nextIndex();
    }
    const std::string file = "'" + place.tableName("decay") + "'";
    const auto line = [&](int index, const std::string& style, const std::string& title) {
        return file + " index " + std::to_string(index) + " with lines " + style + " title '" + title + "'";
    };
    return {
        place.name("decay"),
        "Energy that is still to come (Schroeder), whole and in octave bands; the time axis ends at 0.6 s "
        "for short rooms and 2.5 s for long ones.",
        "set xlabel 'time (s)'; set ylabel 'level (dB)'; set yrange [-75:2]; set grid\nset xrange [0:" +
            shortest(decayScaleSeconds(measures)) + "]\nset key top right\nplot " +
            line(1, "lw 1.5 dt 2 lc rgb '#0072b2'", "125 Hz") + ", " +
            line(2, "lw 1.5 dt 4 lc rgb '#009e73'", "1 kHz") + ", " +
            line(3, "lw 1.5 dt 5 lc rgb '#e69f00'", "4 kHz") + ", " +
            line(4, "lw 1.5 dt 3 lc rgb '#d55e00'", "8 kHz") + ", " + line(0, "lw 2 lc rgb '#000000'", "all"),
        halfWidth, halfHeight};
}

/// The span that an octave's decay time is to lie in; nothing where no goal is set.
std::vector<std::array<double, 3>> decayGoals(const RoomTarget& target) {
    const double least = target.decaySeconds * (1 - decayTolerance);
    const double most = target.decaySeconds * (1 + decayTolerance);
    std::vector<std::array<double, 3>> goals{{500, least, most}, {1000, least, most}};
    for (const DecayShape& shape : decayShapes())
        goals.push_back(
            {shape.centreHz, target.decaySeconds * shape.least, target.decaySeconds * shape.most});
    return goals;
}

Plot octavesPlot(const Place& place, const SceneMeasures& measures) {
    PlotTable table = place.table("t60");
    for (std::size_t octave = 0; octave < roomOctavesHz.size(); ++octave)
        if (measures.decays[octave].seconds > 0)
            table.row({roomOctavesHz[octave], measures.decays[octave].seconds});
    table.nextIndex();
    for (const auto& goal : decayGoals(*measures.target))
        table.row({goal[0], std::sqrt(goal[1] * goal[2]), goal[0] / 1.3, goal[0] * 1.3, goal[1], goal[2]});
    const std::string file = "'" + place.tableName("t60") + "'";
    return {place.name("t60"), "T60 in octave bands, both ears; boxes: where it is to lie.",
            "set xlabel 'octave band (Hz)'; set ylabel 'T60 (s)'; set logscale xy; set grid\n"
            "set xrange [80:12500]; set yrange [0.04:5]\n"
            "set xtics ('125' 125, '250' 250, '500' 500, '1k' 1000, '2k' 2000, '4k' 4000, '8k' 8000)\n"
            "set ytics ('0.05' 0.05, '0.1' 0.1, '0.2' 0.2, '0.5' 0.5, '1' 1, '2' 2, '5' 5)\n"
            "set style fill solid 0.5 noborder\nset key top right\nplot " +
                file + " index 1 using 1:2:3:4:5:6 with boxxyerror lc rgb '#56b4e9' title 'goal', " + file +
                " index 0 with linespoints lw 1.5 pt 7 ps 0.6 lc rgb '#000000' title 'measured'",
            halfWidth, halfHeight};
}

Plot coherencePlot(const Place& place, const SceneMeasures& measures) {
    PlotTable table = place.table("coherence");
    for (const CoherenceBand& band : measures.coherence)
        table.row({band.centreHz, band.zeroLag, band.magnitude, band.freedom});
    if (measures.coherence.empty())
        table.row({1, -2, -2, 0}); // outside the plot: an empty block would be no block
    table.nextIndex();
    for (const CoherenceBand& band : place.chapter.coherenceTarget) {
        const double tolerance =
            band.centreHz < coherenceSplitHz ? coherenceToleranceLow : coherenceToleranceHigh;
        table.row({band.centreHz, band.zeroLag, band.zeroLag - tolerance, band.zeroLag + tolerance});
    }
    const std::string file = "'" + place.tableName("coherence") + "'";
    return {
        place.name("coherence"),
        "Likeness of the ears in the late reverb, third-octave bands, beside that of the head in a diffuse "
        "field; shaded: tolerance.",
        "set xlabel 'frequency (Hz)'; set ylabel 'coherence'; set logscale x; set grid\n"
        "set xrange [90:18000]; set yrange [-0.6:1.05]\n"
        "set xtics ('100' 100, '200' 200, '500' 500, '1k' 1000, '2k' 2000, '5k' 5000, '10k' 10000)\n"
        "set style fill solid 0.4 noborder\nset key top right\nplot " +
            file + " index 1 using 1:3:4 with filledcurves lc rgb '#56b4e9' notitle, " + file +
            " index 1 using 1:2 with lines lw 1.5 lc rgb '#0072b2' title 'diffuse field', " + file +
            " index 0 using 1:3 with lines dt 3 lc rgb '#999999' title 'magnitude', " + file +
            " index 0 using 1:2 with linespoints lw 1.2 pt 7 ps 0.5 lc rgb '#000000' title 'reverb'",
        halfWidth, halfHeight};
}

Plot densityPlot(const Place& place, const SceneMeasures& measures) {
    constexpr double seconds = 0.25;
    PlotTable table = place.table("density");
    for (std::size_t index = 0; index < measures.density.values.size(); ++index) {
        const double time = static_cast<double>(index) * measures.density.stepSeconds;
        if (time > seconds)
            break;
        table.row({time * 1000, measures.density.values[index], measures.reverbDensity.values[index]});
    }
    const std::string file = "'" + place.tableName("density") + "'";
    std::string script = "set xlabel 'time from the direct sound (ms)'; set ylabel 'echo density'; set grid\n"
                         "set xrange [0:250]; set yrange [0:1.5]; set key top right horizontal\n";
    if (measures.target) {
        const std::string full = shortest(measures.target->fullDensitySeconds * 1000);
        script += "set arrow from " + full + ",0 to " + full + ",1.2 nohead dt 2 lw 1.5 lc rgb '#0072b2'\n" +
                  "set label 'to be full by here' at " + full + ",1.26 textcolor rgb '#0072b2'\n";
    }
    script += "plot 1 with lines dt 2 lc rgb '#999999' notitle, " + file +
              " using 1:2 with lines lw 1.2 lc rgb '#d55e00' title 'whole'";
    if (measures.target)
        script += ", " + file + " using 1:3 with lines lw 1.8 lc rgb '#000000' title 'reverb alone'";
    return {place.name("density"),
            "Echo density (Abel and Huang), windows of 20 ms, mean of both ears; 1 is that of noise.", script,
            halfWidth, halfHeight};
}

/// Where the rooms lie, measured and meant, by the two figures that tell them apart best.
Plot mapPlot(const SceneChapter& chapter) {
    PlotTable table(chapter.folder, "all-rooms.txt");
    std::string labels;
    bool any = false;
    for (const SceneFindings& finding : chapter.scenes) {
        const SceneMeasures& measures = finding.measures;
        if (!measures.target || measures.decaySeconds <= 0)
            continue;
        any = true;
        table.row({measures.decaySeconds, measures.directToRestDb,
                   measures.target->decaySeconds - measures.decaySeconds,
                   measures.target->directToRestDb - measures.directToRestDb});
        labels += "set label '" + std::string(measures.scene) + "' at " + shortest(measures.decaySeconds) +
                  "," + shortest(measures.directToRestDb) + " offset 0.8,0.4\n";
    }
    if (!any)
        table.row({100, 100, 0, 0}); // outside the plot: an empty block would be no block
    return {
        "all-rooms",
        "The rooms by decay and by direct sound over everything else; lines lead to the targets.",
        "set xlabel 'T60, mean of 500 Hz and 1 kHz (s)'; set ylabel 'direct over the rest (dB)'; set grid\n"
        "set logscale x; set xrange [0.06:4]; set yrange [-8:12]; set key top right\n"
        "set xtics ('0.1' 0.1, '0.2' 0.2, '0.5' 0.5, '1' 1, '2' 2)\n" +
            labels +
            "plot 'all-rooms.txt' using 1:2:3:4 with vectors nohead lc rgb '#999999' notitle, "
            "'' using ($1+$3):($2+$4) with points pt 6 ps 0.9 lc rgb '#0072b2' title 'target', "
            "'' using 1:2 with points pt 7 ps 0.9 lc rgb '#d55e00' title 'measured'",
        1120, 480};
}

Plot loudnessPlot(const SceneChapter& chapter) {
    PlotTable table(chapter.folder, "all-loudness.txt");
    std::string names;
    double lowest = 0;
    double highest = -200;
    for (std::size_t index = 0; index < chapter.scenes.size(); ++index) {
        const SceneFindings& finding = chapter.scenes[index];
        table.row({static_cast<double>(index), finding.stereoLufs, finding.surroundLufs});
        names +=
            (index > 0 ? ", '" : "'") + std::string(finding.measures.scene) + "' " + std::to_string(index);
        for (const double level : {finding.stereoLufs, finding.surroundLufs}) {
            lowest = std::min(lowest, level);
            highest = std::max(highest, level);
        }
    }
    return {
        "all-loudness", "Loudness of pink noise, -20 dB RMS on every full-range channel, Scene by Scene.",
        "set ylabel 'loudness (LUFS)'; set grid; set key top right horizontal; set xtics rotate by 30 right\n"
        "set xtics (" +
            names + ")\nset xrange [-0.6:" + shortest(static_cast<double>(chapter.scenes.size()) - 0.4) +
            "]; set yrange [" + shortest(std::floor(lowest) - 1) + ":" + shortest(std::ceil(highest) + 2) +
            "]\nplot 'all-loudness.txt' using 1:2 with linespoints dt 3 pt 7 ps 0.9 lc rgb '#0072b2' title "
            "'2.0 +/-30°', '' using 1:3 with linespoints dt 3 pt 5 ps 0.8 lc rgb '#d55e00' title '5.1 ITU'",
        1120, 360};
}

} // namespace

std::vector<Plot> writeScenePlots(const SceneChapter& chapter) {
    std::vector<Plot> plots{mapPlot(chapter), loudnessPlot(chapter)};
    for (const SceneFindings& finding : chapter.scenes) {
        const Place place{chapter, anchorOf(finding.measures.scene)};
        plots.push_back(waveformPlot(place, finding.measures));
        plots.push_back(densityPlot(place, finding.measures));
        if (!finding.measures.target)
            continue;
        plots.push_back(decayPlot(place, finding.measures));
        plots.push_back(octavesPlot(place, finding.measures));
        plots.push_back(coherencePlot(place, finding.measures));
    }
    return plots;
}

} // namespace orvane::kestrum::tools
