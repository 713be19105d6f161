// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/headphones/HeadphoneReport.h"

#include "data/reports/ReportPage.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iomanip>
#include <ostream>
#include <sstream>

namespace orvane::kestrum::tools {

namespace {

/// The file whose bands all others share, the one of 44.1 kHz.
constexpr std::size_t first = 0;

std::string signedText(double number) {
    std::ostringstream text;
    text << std::showpos << std::fixed << std::setprecision(1) << (std::abs(number) < 0.05 ? 0.0 : number);
    return text.str();
}

std::string hertzText(double hertz) {
    std::ostringstream text;
    if (hertz < 1000)
        text << std::lround(hertz) << " Hz";
    else
        text << std::setprecision(3) << hertz / 1000 << " kHz";
    return text.str();
}

std::string rateText(std::size_t file) {
    std::ostringstream text;
    text << responseFiles[file].sampleRate / 1000.0 << " kHz";
    return text.str();
}

double cutAwayDb(const HeadphoneCurve& curve, double hertz) {
    return std::abs(curve.askedDb(hertz) - curve.gainDb(hertz));
}

/// What was asked for and what the limits made of it, in each third octave where they differ most.
std::string limitsText(const HeadphoneCurve& curve) {
    constexpr std::size_t third = 32; // points
    constexpr std::size_t from = 96;  // 20 Hz; below and above 20 kHz the curve is held still
    constexpr std::size_t to = 1053;
    constexpr double enoughDb = 0.05;
    std::string text;
    for (std::size_t band = from; band < to; band += third) {
        double worst = HeadphoneCurve::pointHz(band);
        for (std::size_t point = band; point < std::min(band + third, to); ++point)
            if (const double hertz = HeadphoneCurve::pointHz(point);
                cutAwayDb(curve, hertz) > cutAwayDb(curve, worst))
                worst = hertz;
        if (cutAwayDb(curve, worst) > enoughDb)
            text += (text.empty() ? "" : ", ") + hertzText(worst) + " (" + signedText(curve.askedDb(worst)) +
                    " asked, " + signedText(curve.gainDb(worst)) + " given)";
    }
    return text;
}

bool followsThroughout(const FoldReport& report) {
    return std::ranges::all_of(report.heads, [](const std::vector<FollowedBand>& bands) {
        return !bands.empty() && followsFromHz(bands) == bands.front().centreHz;
    });
}

std::string followText(const FoldReport& report) {
    std::string text;
    for (std::size_t file = 0; file < report.heads.size(); ++file) {
        const double from = followsFromHz(report.heads[file]);
        text += (text.empty() ? "" : ", ") +
                (from > 0 ? "from " + hertzText(from) + " up at " : std::string("nowhere throughout at ")) +
                rateText(file);
    }
    return text;
}

} // namespace

void tellFold(const Headphones& headphones, const FoldReport& report, std::ostream& out) {
    out << "Headphones: " << headphones.fileName << ", " << headphones.description << "; level of the set "
        << signedText(headphones.curve.levelDb()) << " dB.\n";
    if (const std::string limits = limitsText(headphones.curve); !limits.empty())
        out << "  Limited to +12 dB and -24 dB round its mean: " << limits << ".\n";
    out << "  Third octave   wanted  reached by the head's responses, dB (nine of ten directions within)\n"
        << "                     dB";
    for (std::size_t file = 0; file < report.heads.size(); ++file)
        out << std::setw(17) << std::right << rateText(file);
    out << "\n";
    for (std::size_t index = 0; index < report.heads[first].size(); ++index) {
        const FollowedBand& band = report.heads[first][index];
        out << "  " << std::left << std::setw(12) << hertzText(band.centreHz) << std::right << std::setw(9)
            << signedText(band.wantedDb);
        for (const auto& bands : report.heads)
            if (index < bands.size()) {
                std::ostringstream cell;
                cell << signedText(bands[index].reachedDb) << " (" << std::fixed << std::setprecision(1)
                     << bands[index].nineInTenDb << ")";
                out << std::setw(17) << cell.str();
            }
        out << "\n";
    }
    if (followsThroughout(report))
        out << "  The head follows to 1 dB in every band, and so do the rooms.\n";
    else
        out << "  The head follows to 1 dB " << followText(report)
            << ": below, responses of 3 ms are too short for what is asked. The rooms follow everywhere.\n";
}

std::string headphoneChapter(const Headphones& headphones, const FoldReport& report,
                             const std::filesystem::path& folder) {
    constexpr double fromHz = 20;
    constexpr double toHz = 20000;
    constexpr int stepsPerOctave = 24;
    {
        PlotTable table(folder, "headphones.txt");
        for (int step = 0; fromHz * std::exp2(step / double{stepsPerOctave}) <= toHz; ++step) {
            const double hertz = fromHz * std::exp2(step / double{stepsPerOctave});
            table.row({hertz, headphones.curve.askedDb(hertz), headphones.curve.gainDb(hertz)});
        }
        for (const auto& bands : report.heads) {
            table.nextIndex();
            for (const FollowedBand& band : bands)
                table.row({band.centreHz, band.reachedDb, band.nineInTenDb});
        }
    }
    const Plot plot{
        "headphones",
        "The correction as asked, within its limits, and what the head's responses reach in third octaves.",
        R"(set xlabel 'frequency (Hz)'; set ylabel 'gain (dB)'; set logscale x; set xrange [20:20000]; set grid
set key outside top center horizontal
plot 'headphones.txt' index 0 using 1:2 with lines dt 2 lc rgb '#999999' title 'asked', \
     '' index 0 using 1:3 with lines lw 1.5 lc rgb '#000000' title 'folded in', \
     '' index 1 using 1:2 with points pt 7 ps 0.5 lc rgb '#0072b2' title '44.1 kHz', \
     '' index 2 using 1:2 with points pt 6 ps 0.7 lc rgb '#009e73' title '48 kHz', \
     '' index 3 using 1:2 with points pt 2 ps 0.6 lc rgb '#d55e00' title '24 kHz')"};
    drawPlots({&plot, 1}, folder);
    std::ostringstream text;
    tellFold(headphones, report, text);
    return "<section id=\"headphones\"><h2>Headphones</h2>\n" + figureElement(plot, folder) + "<pre>" +
           escaped(text.str()) + "</pre></section>\n";
}

} // namespace orvane::kestrum::tools
