// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/reports/SceneReport.h"

#include "data/measures/ThirdOctaves.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace orvane::kestrum::tools {

namespace {

// The drawn parts keep their colours throughout: direct black, reflections vermilion, reverb sky blue.

constexpr int halfWidth = 560;
constexpr int halfHeight = 300;

/// Where the tables go and what the plots are called.
struct Place {
    const SceneChapter& chapter;
    std::string anchor;
    std::string name(const std::string& plot) const { return anchor + "." + plot; }
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

/// Per step of time, of each part at the left ear: least, greatest, and the level of the larger of both.
void writeWaveform(PlotTable table, const SceneMeasures& measures, double sampleRate) {
    constexpr int stepCount = 400;
    constexpr double stepSeconds = 0.00025;
    const SceneResponses& responses = measures.responses;
    double full = 1e-9;
    for (const double sample : responses.direct[leftEar])
        full = std::max(full, std::abs(sample));
    const auto place = [&](int step) {
        return static_cast<std::size_t>(step * stepSeconds * sampleRate) + measures.onset;
    };
    for (int step = 0; step < stepCount; ++step) {
        std::vector<double> row{step * stepSeconds * 1000};
        for (const EarResponses* part : {&responses.reverb, &responses.reflections, &responses.direct}) {
            const auto range = extremes((*part)[leftEar], place(step), place(step + 1), full);
            row.insert(row.end(),
                       {range[0], range[1], 20 * std::log10(std::max({-range[0], range[1], 1e-6}))});
        }
        table.row(row);
    }
}

Plot waveformPlot(const Place& place, const SceneMeasures& measures) {
    writeWaveform(place.table("waveform"), measures, place.chapter.sampleRate);
    const std::string file = "'" + place.tableName("waveform") + "' using 1:";
    const auto style = [](std::string_view colour, const std::string& title) {
        return " lc rgb '" + std::string(colour) + "' lw 0.8 title '" + title + "'";
    };
    const auto panel = [&](const std::array<std::string, 3>& columns, const std::string& drawn) {
        return "plot " + file + columns[0] + drawn + style(colours::sky, "reverb") + ", " + file +
               columns[1] + drawn + style(colours::vermilion, "reflections") + ", " + file + columns[2] +
               drawn + style(colours::black, "direct") + "\n";
    };
    return {place.name("waveform"),
            "Impulse at the left ear, first 100 ms from the direct sound on: waveform (the direct sound's "
            "peak is "
            "1, its top is cut off) and level.",
            "set multiplot layout 2,1 margins 0.13,0.97,0.17,0.97 spacing 0,0.05\n"
            "set xrange [-1:100]; set grid; set format x ''\n"
            "set yrange [-0.5:0.5]; set ytics 0.25; set ylabel 'amplitude'; set key top right horizontal\n" +
                panel({"2:3", "5:6", "8:9"}, " with filledcurves") +
                "unset key; set format x '%g'; set xlabel 'time (ms)'\n"
                "set yrange [-70:3]; set ytics 20; set ylabel 'level (dB)'\n" +
                panel({"4", "7", "10"}, " with filledcurves y1=-70") + "unset multiplot",
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

/// The span that an octave's decay time is to lie in; nothing where no goal is set. The outer octaves are judged by
/// their share of the middle that was measured.
std::vector<std::array<double, 3>> decayGoals(const RoomTarget& target, double middleSeconds) {
    const double least = target.decaySeconds * (1 - decayTolerance);
    const double most = target.decaySeconds * (1 + decayTolerance);
    std::vector<std::array<double, 3>> goals{{500, least, most}, {1000, least, most}};
    for (const DecayShape& shape : target.decayShapes())
        goals.push_back({shape.centreHz, middleSeconds * shape.least, middleSeconds * shape.most});
    return goals;
}

Plot octavesPlot(const Place& place, const SceneMeasures& measures) {
    PlotTable table = place.table("t60");
    for (std::size_t octave = 0; octave < roomOctavesHz.size(); ++octave)
        if (measures.decays[octave].seconds > 0)
            table.row({roomOctavesHz[octave], measures.decays[octave].seconds});
    table.nextIndex();
    for (std::size_t octave = 0; octave < roomOctavesHz.size(); ++octave)
        if (measures.reverbDecays[octave].seconds > 0)
            table.row({roomOctavesHz[octave], measures.reverbDecays[octave].seconds});
    table.nextIndex();
    for (const auto& goal : decayGoals(*measures.target, measures.decaySeconds))
        table.row({goal[0], std::sqrt(goal[1] * goal[2]), goal[0] / 1.3, goal[0] * 1.3, goal[1], goal[2]});
    const std::string file = "'" + place.tableName("t60") + "'";
    return {place.name("t60"),
            "T60 in octave bands, both ears; boxes: where that of the whole is to lie, the outer ones over "
            "its middle.",
            "set xlabel 'octave band (Hz)'; set ylabel 'T60 (s)'; set logscale xy; set grid\n"
            "set xrange [80:12500]; set yrange [0.04:5]\n"
            "set xtics ('125' 125, '250' 250, '500' 500, '1k' 1000, '2k' 2000, '4k' 4000, '8k' 8000)\n"
            "set ytics ('0.05' 0.05, '0.1' 0.1, '0.2' 0.2, '0.5' 0.5, '1' 1, '2' 2, '5' 5)\n"
            "set style fill solid 0.5 noborder\nset key top right\nplot " +
                file + " index 2 using 1:2:3:4:5:6 with boxxyerror lc rgb '#56b4e9' title 'goal', " + file +
                " index 1 with linespoints lw 1.2 dt 2 pt 6 ps 0.6 lc rgb '#0072b2' title 'reverb alone', " +
                file + " index 0 with linespoints lw 1.5 pt 7 ps 0.6 lc rgb '#000000' title 'whole'",
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
        if (measures.density.values[index] > 0) // 0 is silence here
            table.row({time * 1000, measures.density.values[index], measures.reverbDensity.values[index]});
    }
    const std::string file = "'" + place.tableName("density") + "'";
    std::string script = "set xlabel 'time from the direct sound (ms)'; set ylabel 'echo density'; set grid\n"
                         "set xrange [0:250]; set yrange [0:2]; set ytics 0.5; set key above\n";
    const std::string full = shortest(measures.target->fullDensitySeconds * 1000);
    script += "set arrow from " + full + ",0 to " + full + ",1.75 nohead dt 2 lw 1.5 lc rgb '#0072b2'\n" +
              "set label 'to be full by here' at " + full + ",1.86 textcolor rgb '#0072b2'\n" +
              "plot 1 with lines dt 2 lc rgb '#999999' notitle, " + file +
              " using 1:2 with lines lw 1.2 lc rgb '#d55e00' title 'whole', " + file +
              " using 1:3 with lines lw 1.8 lc rgb '#000000' title 'reverb alone'";
    return {place.name("density"),
            "Echo density (Abel and Huang), mean of both ears; 1 is that of noise. Windows of 20 ms, of " +
                shortest(measures.reverbDensity.windowSeconds * 1000) + " ms for the reverb alone.",
            script, halfWidth, halfHeight};
}

/// Power in third-octave bands, mean of both ears, in decibels.
Samples bandLevels(const EarResponses& response, std::span<const BandWindow> bands,
                   RealTransform& transform) {
    Samples levels(bands.size());
    const std::array<Spectrum, 2> ears{transform.forward(response[leftEar]),
                                       transform.forward(response[rightEar])};
    for (std::size_t band = 0; band < bands.size(); ++band) {
        double power = 1e-12;
        double width = 0;
        for (std::size_t index = 0; index < bands[band].gains.size(); ++index) {
            const double gain = bands[band].gains[index];
            const std::size_t bin = bands[band].firstBin + index;
            power += gain * (std::norm(ears[leftEar][bin]) + std::norm(ears[rightEar][bin])) / 2;
            width += gain;
        }
        levels[band] = 10 * std::log10(power / width);
    }
    return levels;
}

Plot spectrumPlot(const Place& place, const SceneMeasures& measures) {
    const SceneResponses& responses = measures.responses;
    RealTransform transform(powerOfTwoFrom(responses.full[leftEar].size()));
    const auto bands = thirdOctaves(transform.binCount(), place.chapter.sampleRate);
    const Samples reverb = bandLevels(responses.reverb, bands, transform);
    const Samples reflections = bandLevels(responses.reflections, bands, transform);
    const Samples direct = bandLevels(responses.direct, bands, transform);
    PlotTable table = place.table("spectrum");
    for (std::size_t band = 0; band < bands.size(); ++band)
        table.row({bands[band].centreHz, reverb[band], reflections[band], direct[band]});
    const std::string file = "'" + place.tableName("spectrum") + "'";
    return {place.name("spectrum"), "Power of the parts in third-octave bands, mean of both ears.",
            "set xlabel 'frequency (Hz)'; set ylabel 'level (dB)'; set logscale x; set grid\n"
            "set xrange [90:18000]; set yrange [-50:25]\n"
            "set xtics ('100' 100, '200' 200, '500' 500, '1k' 1000, '2k' 2000, '5k' 5000, '10k' 10000)\n"
            "set key top right horizontal\nplot " +
                file + " using 1:4 with lines lw 2 lc rgb '#000000' title 'direct', " + file +
                " using 1:3 with lines lw 1.5 dt 4 lc rgb '#d55e00' title 'reflections', " + file +
                " using 1:2 with lines lw 1.5 lc rgb '#56b4e9' title 'reverb'",
            halfWidth, halfHeight};
}

/// Where the rooms lie, measured and meant, by the two figures that tell them apart best.
Plot mapPlot(const SceneChapter& chapter) {
    PlotTable table(chapter.folder, "all.rooms.txt");
    std::string labels;
    std::vector<const SceneMeasures*> drawn;
    const auto crowded = [&drawn](const SceneMeasures& measures) {
        return std::ranges::any_of(drawn, [&](const SceneMeasures* other) {
            return std::abs(std::log2(other->decaySeconds / measures.decaySeconds)) < 0.4 &&
                   std::abs(other->directToRestDb - measures.directToRestDb) < 1.5;
        });
    };
    for (const SceneFindings& finding : chapter.scenes) {
        const SceneMeasures& measures = finding.measures;
        if (!measures.target || measures.decaySeconds <= 0)
            continue;
        table.row({measures.decaySeconds, measures.directToRestDb,
                   measures.target->decaySeconds - measures.decaySeconds,
                   measures.target->directToRestDb - measures.directToRestDb});
        labels += "set label '" + std::string(measures.scene) + "' at " + shortest(measures.decaySeconds) +
                  "," + shortest(measures.directToRestDb) +
                  (crowded(measures) ? " right offset -0.8,0.4\n" : " offset 0.8,0.4\n");
        drawn.push_back(&measures);
    }
    if (drawn.empty())
        table.row({100, 100, 0, 0}); // outside the plot: an empty block would be no block
    return {
        "all.rooms",
        "The rooms by decay and by direct sound over everything else; lines lead to the targets.",
        "set xlabel 'T60, mean of 500 Hz and 1 kHz (s)'; set ylabel 'direct over the rest (dB)'; set grid\n"
        "set logscale x; set xrange [0.06:4]; set yrange [-10:12]; set key top right\n"
        "set xtics ('0.1' 0.1, '0.2' 0.2, '0.5' 0.5, '1' 1, '2' 2)\n" +
            labels +
            "plot 'all.rooms.txt' using 1:2:3:4 with vectors nohead lc rgb '#999999' notitle, "
            "'' using ($1+$3):($2+$4) with points pt 6 ps 0.9 lc rgb '#0072b2' title 'target', "
            "'' using 1:2 with points pt 7 ps 0.9 lc rgb '#d55e00' title 'measured'",
        1120, 480};
}

Plot loudnessPlot(const SceneChapter& chapter) {
    PlotTable table(chapter.folder, "all.loudness.txt");
    std::string names;
    double lowest = 0;
    double highest = -200;
    for (std::size_t index = 0; index < chapter.scenes.size(); ++index) {
        const SceneFindings& finding = chapter.scenes[index];
        table.row({static_cast<double>(index), finding.stereoLufs, finding.surroundLufs});
        names +=
            (index > 0 ? ", '" : "'") + std::string(finding.measures.scene) + "' " + std::to_string(index);
        for (const double level : {finding.stereoLufs, finding.surroundLufs}) {
            if (!std::isfinite(level))
                continue; // silence has no place on the axis
            lowest = std::min(lowest, level);
            highest = std::max(highest, level);
        }
    }
    return {
        "all.loudness", "Loudness of pink noise, −20 dB RMS on every full-range channel, Scene by Scene.",
        "set ylabel 'loudness (LUFS)'; set grid; set key top right horizontal; set xtics rotate by 30 right\n"
        "set xtics (" +
            names + ")\nset xrange [-0.6:" + shortest(static_cast<double>(chapter.scenes.size()) - 0.4) +
            "]; set yrange [" + shortest(std::floor(lowest) - 1) + ":" + shortest(std::ceil(highest) + 2) +
            "]\nplot 'all.loudness.txt' using 1:2 with linespoints dt 3 pt 7 ps 0.9 lc rgb '#0072b2' title "
            "'2.0 +/-30°', '' using 1:3 with linespoints dt 3 pt 5 ps 0.8 lc rgb '#d55e00' title '5.1 ITU'",
        1120, 360};
}

} // namespace

std::vector<Plot> writeScenePlots(const SceneChapter& chapter) {
    std::vector<Plot> plots{mapPlot(chapter), loudnessPlot(chapter)};
    for (const SceneFindings& finding : chapter.scenes) {
        const Place place{chapter, anchorOf(finding.measures.scene)};
        plots.push_back(waveformPlot(place, finding.measures));
        plots.push_back(spectrumPlot(place, finding.measures));
        if (!finding.measures.target)
            continue;
        plots.push_back(decayPlot(place, finding.measures));
        plots.push_back(octavesPlot(place, finding.measures));
        plots.push_back(coherencePlot(place, finding.measures));
        plots.push_back(densityPlot(place, finding.measures));
    }
    return plots;
}

} // namespace orvane::kestrum::tools
