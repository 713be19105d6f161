// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/Report.h"

#include "data/DataError.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <sstream>
#include <string_view>

namespace orvane::kestrum::tools {

namespace {

/// One plot: its file, what it shows, and the gnuplot lines that draw it from the tables.
struct Plot {
    std::string_view name;
    std::string_view caption;
    std::string_view script;
};

constexpr std::array<Plot, 7> plots{{
    {"coverage", "Coverage: measured directions and those completed by the model, azimuth to the right.",
     R"(set xlabel 'azimuth (degrees, right positive)'; set ylabel 'elevation (degrees)'
set xrange [-182:182]; set yrange [-95:95]; set xtics 30; set ytics 30; set key outside top
plot 'coverage.txt' index 0 using 1:2 with points pt 7 ps 0.3 lc rgb '#1f5fa8' title 'measured', \
     'coverage.txt' index 1 using 1:2 with points pt 6 ps 0.4 lc rgb '#c2571a' title 'modelled')"},
    {"delay", "Time between the ears on the horizontal plane, files beside source.",
     R"(set xlabel 'azimuth (degrees)'; set ylabel 'left later than right (us)'; set xrange [-180:180]; set xtics 30; set grid
set key top left
plot 'delay.txt' index 0 using 1:2 with points pt 6 ps 0.5 lc rgb '#000000' title 'source', \
     'delay.txt' index 1 using 1:2 with lines lw 1.5 lc rgb '#1f5fa8' title '44.1 kHz', \
     'delay.txt' index 2 using 1:2 with lines dt 2 lc rgb '#2f8f4e' title '48 kHz', \
     'delay.txt' index 3 using 1:2 with lines dt 3 lw 1.5 lc rgb '#c2571a' title '24 kHz')"},
    {"level",
     "Level between the ears on the horizontal plane in octave bands, 44.1 kHz file (lines) beside source "
     "(dots).",
     R"(set xlabel 'azimuth (degrees)'; set ylabel 'right over left (dB)'; set xrange [-180:180]; set xtics 30; set grid
set key outside right
plot for [band=0:4] 'delay.txt' index 1 using 1:(column(3+band)) with lines lc band+1 lw 1.5 \
         title word('500 1000 2000 4000 8000', band+1).' Hz', \
     for [band=0:4] 'delay.txt' index 0 using 1:(column(3+band)) with points pt 7 ps 0.25 lc band+1 notitle)"},
    {"spectra",
     "Magnitude at the left ear, source in front, at either side, behind, above, and below (modelled), 44.1 "
     "kHz file.",
     R"(set xlabel 'frequency (Hz)'; set ylabel 'level (dB)'; set logscale x; set xrange [50:20000]; set yrange [-40:20]
set grid; set key bottom left
plot 'spectra.txt' using 1:2 with lines lw 1.5 title 'front', '' using 1:3 with lines lw 1.5 title 'left side', \
     '' using 1:4 with lines lw 1.5 title 'right side', '' using 1:5 with lines lw 1.5 title 'back', \
     '' using 1:6 with lines lw 1.5 title 'top', '' using 1:7 with lines dt 2 title 'below')"},
    {"diffuse", "Diffuse field in third-octave bands: the files' distance from flat, and the goal.",
     R"(set xlabel 'frequency (Hz)'; set ylabel 'level (dB)'; set logscale x; set xrange [200:15000]; set yrange [-2:2]; set grid
plot 'diffuse.txt' index 0 using 1:2 with linespoints pt 7 ps 0.4 title '44.1 kHz', \
     'diffuse.txt' index 1 using 1:2 with linespoints pt 7 ps 0.4 title '48 kHz', \
     'diffuse.txt' index 2 using 1:2 with linespoints pt 7 ps 0.4 title '24 kHz', \
     1 with lines dt 2 lc rgb '#888888' notitle, -1 with lines dt 2 lc rgb '#888888' notitle)"},
    {"kept", "Energy that the window keeps, near and far ear, by lateral angle of the source, 44.1 kHz file.",
     R"(set xlabel 'lateral angle (degrees)'; set ylabel 'kept (%)'; set xrange [0:90]; set yrange [85:100.5]; set grid
set key bottom left
plot 'kept.txt' using 1:3 with points pt 7 ps 0.2 lc rgb '#c2571a' title 'far ear', \
     'kept.txt' using 1:2 with points pt 7 ps 0.2 lc rgb '#1f5fa8' title 'near ear')"},
    {"responses", "Responses of a source at the right side, 44.1 kHz file.",
     R"(set xlabel 'time (ms)'; set ylabel 'amplitude'; set grid
plot 'responses.txt' using 1:3 with lines lw 1.2 lc rgb '#1f5fa8' title 'right ear', \
     'responses.txt' using 1:2 with lines lw 1.2 lc rgb '#c2571a' title 'left ear')"},
}};

/// A text file of numbers in the report's folder.
class Table {
public:
    Table(const std::filesystem::path& folder, std::string_view name) : stream(folder / name) {
        if (!stream)
            throw DataError("The report cannot be written to \"" + folder.string() +
                            "\": give a folder that you may write to.");
        stream << std::setprecision(6);
    }
    void row(std::initializer_list<double> values) {
        for (const double value : values)
            stream << value << " ";
        stream << "\n";
    }
    void nextIndex() { stream << "\n\n"; }

private:
    std::ofstream stream;
};

void interauralRow(Table& table, double azimuth, const std::array<Samples, 2>& ears, double rate,
                   double highestHz) {
    const auto levels = interauralLevelsDb(ears, rate, highestHz);
    table.row({azimuth, interauralDelaySeconds(ears[leftEar], ears[rightEar], rate) * 1e6, levels[0],
               levels[1], levels[2], levels[3], levels[4]});
}

void writeCoverage(const BuiltSet& built, const std::filesystem::path& folder) {
    Table table(folder, "coverage.txt");
    for (const bool modelled : {false, true}) {
        for (const AlignedResponse& response : built.complete.responses)
            if (response.modelled == modelled)
                table.row({azimuthDegrees(response.direction), elevationDegrees(response.direction)});
        if (modelled && built.cap.modelledCount == 0)
            table.row({0, -100}); // outside the plot: an empty block would be no block
        table.nextIndex();
    }
}

void writeInteraural(const BuiltSet& built, const std::filesystem::path& folder) {
    constexpr double levelEnd = 0.5;
    Table table(folder, "delay.txt");
    RealTransform transform(built.source.transformSize);
    std::vector<const AlignedResponse*> horizontal;
    for (const AlignedResponse& response : built.source.responses)
        if (std::abs(elevationDegrees(response.direction)) < levelEnd)
            horizontal.push_back(&response);
    std::ranges::sort(horizontal, [](const AlignedResponse* one, const AlignedResponse* other) {
        return azimuthDegrees(one->direction) < azimuthDegrees(other->direction);
    });
    for (const AlignedResponse* response : horizontal)
        interauralRow(
            table, azimuthDegrees(response->direction),
            {assembleResponse(*response, leftEar, built.source.sampleRate, built.originSeconds, transform),
             assembleResponse(*response, rightEar, built.source.sampleRate, built.originSeconds, transform)},
            built.source.sampleRate, responseFiles[0].flatToHz);
    if (horizontal.empty())
        table.row({0, 0, 0, 0, 0, 0, 0});
    for (const BuiltFile& file : built.files) {
        table.nextIndex();
        for (int azimuth = -180; azimuth <= 180; azimuth += gridStepDegrees)
            interauralRow(table, azimuth, file.set.responses[gridIndex(azimuth, 0)], file.set.file.sampleRate,
                          file.set.file.flatToHz);
    }
}

void writeSpectra(const ResponseSet& set, const std::filesystem::path& folder) {
    Table table(folder, "spectra.txt");
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
}

void writeTables(const BuiltSet& built, const std::filesystem::path& folder) {
    writeCoverage(built, folder);
    writeInteraural(built, folder);
    const BuiltFile& first = built.files[0];
    writeSpectra(first.set, folder);
    Table diffuse(folder, "diffuse.txt");
    for (const BuiltFile& file : built.files) {
        for (const BandLevel& band : file.diffuse)
            diffuse.row({band.centreHz, band.levelDb});
        diffuse.nextIndex();
    }
    Table kept(folder, "kept.txt");
    const std::vector<GridPlace> places = gridPlaces();
    for (std::size_t index = 0; index < places.size(); ++index) {
        const double lateral = lateralDegrees(places[index].direction());
        const std::size_t near = lateral > 0 ? rightEar : leftEar;
        kept.row(
            {std::abs(lateral), first.kept[index].ears[near] * 100, first.kept[index].ears[1 - near] * 100});
    }
    Table responses(folder, "responses.txt");
    const auto& side = first.set.responses[gridIndex(90, 0)];
    for (std::size_t frame = 0; frame < first.set.file.length; ++frame)
        responses.row({static_cast<double>(frame) * 1000 / first.set.file.sampleRate, side[leftEar][frame],
                       side[rightEar][frame]});
}

void drawPlots(const std::filesystem::path& folder) {
    {
        std::ofstream script(folder / "plots.gnuplot");
        for (const Plot& plot : plots)
            script << "reset\nset terminal svg size 760,380 dynamic background rgb 'white' font "
                      "'sans-serif,11'\n"
                   << "set output '" << plot.name << ".svg'\n"
                   << plot.script << "\nunset output\n";
    }
    std::string quoted;
    for (const char letter : folder.string())
        quoted += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
    // The shell is needed for the working folder only; the folder's name is quoted whole.
    const int result = std::system(("cd '" + quoted + "' && gnuplot plots.gnuplot").c_str());
    if (result != 0)
        throw DataError("The plots cannot be drawn: install the package gnuplot-nox, or leave --report out.");
}

/// @return 99.5 as "99.5" and 20 as "20", whatever precision the page's values have.
std::string shortest(double number) {
    std::ostringstream text;
    text << number;
    return text.str();
}

std::string escaped(const std::string& text) {
    std::string result;
    for (const char letter : text)
        result += letter == '<'   ? "&lt;"
                  : letter == '>' ? "&gt;"
                  : letter == '&' ? "&amp;"
                                  : std::string(1, letter);
    return result;
}

std::string verdict(const std::vector<Figure>& figures) {
    const auto missed = std::ranges::count_if(figures, [](const Figure& figure) { return !figure.met(); });
    if (missed == 0)
        return "This set is good: every figure meets its goal.";
    return "This set misses " + std::to_string(missed) + " of " + std::to_string(figures.size()) +
           " goals; the table says which. It can be used, but listen before you trust it.";
}

} // namespace

void writeReport(const BuiltSet& built, const std::string& about, const std::filesystem::path& folder) {
    writeTables(built, folder);
    drawPlots(folder);
    const std::vector<Figure> figures = built.figures();
    std::ofstream page(folder / "index.html");
    page << "<!DOCTYPE html>\n<html lang=\"en\">\n<head><meta charset=\"utf-8\"><title>Head-related "
            "responses</title>\n"
            "<style>body{font:16px/1.5 sans-serif;max-width:50em;margin:2em auto;padding:0 1em}"
            "table{border-collapse:collapse}td,th{padding:.2em .8em;border-bottom:1px solid "
            "#ccc;text-align:left}"
            ".missed{color:#b00020;font-weight:bold}img{max-width:100%}pre{white-space:pre-wrap}</style></"
            "head>\n<body>\n"
            "<h1>Head-related responses</h1>\n<p><strong>"
         << verdict(figures)
         << "</strong></p>\n<table><tr><th>Figure</th><th>Value</th><th>Goal</th><th></th></tr>\n";
    page << std::fixed << std::setprecision(2);
    for (const Figure& figure : figures)
        page << "<tr><td>" << escaped(figure.name) << "</td><td>" << figure.value << " " << figure.unit
             << "</td><td>" << (figure.atLeast ? "at least " : "at most ") << shortest(figure.goal)
             << "</td><td" << (figure.met() ? ">met" : " class=\"missed\">missed") << "</td></tr>\n";
    page << "</table>\n<p>Between the measured directions, each left out in turn and asked of its "
            "neighbours: level between the "
            "ears "
         << built.leaveOneOut.meanLevelDb << " dB off in the mean and " << built.leaveOneOut.worstLevelDb
         << " dB at worst, time " << built.leaveOneOut.worstDelaySeconds * 1e6 << " us at worst.</p>\n";
    for (const Plot& plot : plots)
        page << "<figure><img src=\"" << plot.name << ".svg\" alt=\"" << plot.caption << "\"><figcaption>"
             << plot.caption << "</figcaption></figure>\n";
    page << "<h2>Origin</h2>\n<pre>" << escaped(about) << "</pre>\n</body>\n</html>\n";
    page.close();
    if (!page)
        throw DataError("The report cannot be written to \"" + folder.string() +
                        "\": give a folder that you may write to.");
}

} // namespace orvane::kestrum::tools
