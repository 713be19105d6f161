// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/reports/Report.h"

#include "data/reports/HeadPlots.h"
#include "data/reports/ReportPage.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace orvane::kestrum::tools {

namespace {

Plot writeCoverage(const BuiltSet& built, const std::filesystem::path& folder) {
    PlotTable table(folder, "coverage.txt");
    for (const bool modelled : {false, true}) {
        for (const AlignedResponse& response : built.complete.responses)
            if (response.modelled == modelled)
                table.row({azimuthDegrees(response.direction), elevationDegrees(response.direction)});
        if (modelled && built.cap.modelledCount == 0)
            table.row({0, -100}); // outside the plot: an empty block would be no block
        table.nextIndex();
    }
    return {"coverage",
            "Coverage: measured directions and those completed by the model, azimuth to the right.",
            R"(set xlabel 'azimuth (degrees, right positive)'; set ylabel 'elevation (degrees)'
set xrange [-182:182]; set yrange [-95:95]; set xtics 30; set ytics 30; set key outside top
plot 'coverage.txt' index 0 using 1:2 with points pt 7 ps 0.3 lc rgb '#0072b2' title 'measured', \
     'coverage.txt' index 1 using 1:2 with points pt 6 ps 0.4 lc rgb '#d55e00' title 'modelled')"};
}

/// The measured directions of the horizontal plane, from -180 degrees on.
std::vector<InterauralPoint> sourcePoints(const BuiltSet& built) {
    constexpr double levelEnd = 0.5;
    RealTransform transform(built.source.transformSize);
    std::vector<InterauralPoint> points;
    for (const AlignedResponse& response : built.source.responses) {
        if (std::abs(elevationDegrees(response.direction)) >= levelEnd)
            continue;
        const auto ear = [&](std::size_t index) {
            return assembleResponse(response, index, built.source.sampleRate, built.originSeconds, transform);
        };
        points.push_back(interauralPoint(azimuthDegrees(response.direction), {ear(leftEar), ear(rightEar)},
                                         built.source.sampleRate, responseFiles[0].flatToHz));
    }
    std::ranges::sort(points, {}, &InterauralPoint::azimuthDegrees);
    return points;
}

Plot writeKept(const BuiltFile& file, const std::filesystem::path& folder) {
    PlotTable table(folder, "kept.txt");
    const std::vector<GridPlace> places = gridPlaces();
    for (std::size_t index = 0; index < places.size(); ++index) {
        const double lateral = lateralDegrees(places[index].direction());
        const std::size_t near = lateral > 0 ? rightEar : leftEar;
        table.row(
            {std::abs(lateral), file.kept[index].ears[near] * 100, file.kept[index].ears[1 - near] * 100});
    }
    return {
        "kept",
        "Energy that the window keeps, near and far ear, by lateral angle of the source, 44.1 kHz file.",
        R"(set xlabel 'lateral angle (degrees)'; set ylabel 'kept (%)'; set xrange [0:90]; set yrange [85:100.5]; set grid
set key bottom left
plot 'kept.txt' using 1:3 with points pt 7 ps 0.2 lc rgb '#d55e00' title 'far ear', \
     'kept.txt' using 1:2 with points pt 7 ps 0.2 lc rgb '#0072b2' title 'near ear')"};
}

std::string verdict(const std::vector<Figure>& figures) {
    const auto missed = std::ranges::count_if(figures, [](const Figure& figure) { return !figure.met(); });
    if (missed == 0)
        return "This set is good: every figure meets its goal.";
    return "This set misses " + std::to_string(missed) + " of " + std::to_string(figures.size()) +
           " goals; the table says which. It can be used, but listen before you trust it.";
}

std::string figureTable(const std::vector<Figure>& figures) {
    std::string table = "<table><tr><th>Figure</th><th>Value</th><th>Goal</th><th></th></tr>\n";
    for (const Figure& figure : figures)
        table += "<tr><td>" + escaped(figure.name) + "</td><td>" + fixedText(figure.value, 2) + " " +
                 figure.unit + "</td><td>" + (figure.atLeast ? "at least " : "at most ") +
                 shortest(figure.goal) + "</td><td" + (figure.met() ? ">met" : " class=\"missed\">missed") +
                 "</td></tr>\n";
    return table + "</table>\n";
}

} // namespace

void writeReport(const BuiltSet& built, const std::string& about, const std::filesystem::path& folder,
                 const std::string& chapter) {
    std::vector<Plot> plots{writeCoverage(built, folder)};
    const ResponseSets sets{built.files[0].set, built.files[1].set, built.files[2].set};
    std::ranges::move(writeHeadPlots(sets, sourcePoints(built), folder), std::back_inserter(plots));
    plots.push_back(writeKept(built.files[0], folder));
    drawPlots(plots, folder);
    const std::vector<Figure> figures = built.figures();
    std::ostringstream page;
    page << pageHead("Head-related responses") << "<p><strong>" << verdict(figures) << "</strong></p>\n"
         << figureTable(figures)
         << "<p>Between the measured directions, each left out in turn and asked of its neighbours: level "
            "between the ears "
         << fixedText(built.leaveOneOut.meanLevelDb, 2) << " dB off in the mean and "
         << fixedText(built.leaveOneOut.worstLevelDb, 2) << " dB at worst, time "
         << fixedText(built.leaveOneOut.worstDelaySeconds * 1e6, 2) << " us at worst.</p>\n";
    for (const Plot& plot : plots)
        page << figureElement(plot, folder);
    page << chapter << "<h2>Origin</h2>\n<pre>" << escaped(about) << "</pre>\n</body>\n</html>\n";
    writePage(page.str(), folder);
}

} // namespace orvane::kestrum::tools
