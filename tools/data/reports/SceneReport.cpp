// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/reports/SceneReport.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <sstream>

namespace orvane::kestrum::tools {

namespace {

constexpr const char* nothing = "<td class=\"number\">–</td>";

std::string number(const std::string& text, bool missed = false) {
    return std::string("<td class=\"number") + (missed ? " missed\">" : "\">") + text + (missed ? " ✗" : "") +
           "</td>";
}

/// The goal, then what was measured, marked where it lies outside.
std::string pair(double target, double measured, int decimals, bool missed) {
    return "<td class=\"number target\">" + fixedText(target, decimals) + "</td>" +
           number(fixedText(measured, decimals), missed);
}

std::string milliseconds(double seconds) { return seconds < 0 ? "–" : fixedText(seconds * 1000, 0); }

/// Which goals with a tolerance a room misses.
std::vector<std::string> missedGoals(const SceneMeasures& measures, const CoherenceError& coherence) {
    std::vector<std::string> missed;
    if (!decayWithin(measures))
        missed.emplace_back("T60");
    if (!shapeWithin(measures.decays, *measures.target))
        missed.emplace_back("shape");
    if (!clarityWithin(measures))
        missed.emplace_back("C50");
    if (!coherence.within())
        missed.emplace_back("coherence");
    if (!densityWithin(measures))
        missed.emplace_back("density");
    return missed;
}

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : ", ") + word;
    return text;
}

std::string overviewRow(const SceneChapter& chapter, const SceneFindings& finding) {
    const SceneMeasures& measures = finding.measures;
    std::string row = "<tr><td class=\"name\"><a href=\"#" + anchorOf(measures.scene) + "\">" +
                      escaped(measures.scene) + "</a></td>";
    if (!measures.target)
        return row + nothing + nothing + nothing + nothing + number(ratioText(measures.clarity50Db)) +
               number(ratioText(measures.clarity80Db)) + nothing +
               number(ratioText(measures.directToRestDb)) + nothing + nothing + nothing + nothing +
               number(fixedText(finding.stereoLufs, 1)) + number(fixedText(finding.surroundLufs, 1)) +
               "</tr>\n";
    const RoomTarget& target = *measures.target;
    const CoherenceError coherence = coherenceError(measures.coherence, chapter.coherenceTarget);
    row += pair(target.decaySeconds, measures.decaySeconds, 2, !decayWithin(measures)) +
           number(fixedText(measures.reverbDecaySeconds, 2));
    row += pair(target.clarity50Db, measures.clarity50Db, 1, !clarityWithin(measures));
    row += number(ratioText(measures.clarity80Db));
    row += pair(target.directToRestDb, measures.directToRestDb, 1, false);
    row += "<td class=\"number target\">" + milliseconds(target.fullDensitySeconds) + "</td>" +
           number(milliseconds(measures.reverbDensity.fullSeconds), !densityWithin(measures));
    row += number(fixedText(coherence.low, 2), coherence.low > coherenceToleranceLow);
    row += number(fixedText(coherence.high, 2), coherence.high > coherenceToleranceHigh);
    return row + number(fixedText(finding.stereoLufs, 1)) + number(fixedText(finding.surroundLufs, 1)) +
           "</tr>\n";
}

std::string verdict(const SceneChapter& chapter) {
    std::size_t rooms = 0;
    std::string missed;
    std::vector<std::string> misshapen;
    for (const SceneFindings& finding : chapter.scenes) {
        if (!finding.measures.target)
            continue;
        ++rooms;
        const auto goals = missedGoals(finding.measures,
                                       coherenceError(finding.measures.coherence, chapter.coherenceTarget));
        if (!shapeWithin(finding.measures.reverbDecays, *finding.measures.target))
            misshapen.push_back(escaped(finding.measures.scene));
        if (!goals.empty())
            missed +=
                (missed.empty() ? "" : "; ") + escaped(finding.measures.scene) + " (" + joined(goals) + ")";
    }
    const std::string alone =
        misshapen.empty() ? " The reverb alone has the shape that its decay is to have in every room."
                          : " The reverb alone misses the shape of its decay in: " + joined(misshapen) + ".";
    if (missed.empty())
        return "<p><strong>All " + std::to_string(rooms) +
               " rooms meet their goals for decay, shape, clarity, coherence and density.</strong>" + alone +
               "</p>\n";
    return "<p><strong>Outside a tolerance:</strong> " + missed + "." + alone + "</p>\n";
}

std::string figuresOf(std::span<const Plot> plots, const std::string& prefix, const SceneChapter& chapter) {
    std::string figures;
    for (const Plot& plot : plots)
        if (plot.name.starts_with(prefix + "."))
            figures += figureElement(plot, chapter.folder);
    return figures;
}

/// Two rows: the decay times of every octave, and the shape that they make over the frequency.
std::string decayRows(const std::string& name, const OctaveDecays& decays, const RoomTarget& target) {
    const double middle = midDecaySeconds(decays);
    std::string times;
    std::string shares;
    for (std::size_t octave = 0; octave < roomOctavesHz.size(); ++octave) {
        const DecayTime& time = decays[octave];
        if (time.seconds <= 0 || middle <= 0) {
            times += nothing;
            shares += nothing;
            continue;
        }
        const double share = time.seconds / middle;
        const bool missed = std::ranges::any_of(target.decayShapes(), [&](const DecayShape& shape) {
            return shape.centreHz == roomOctavesHz[octave] && !shape.holds(share);
        });
        times += number(fixedText(time.seconds, 2) + (time.rangeDb == 20 ? " (T20)" : ""));
        shares += number(fixedText(share, 2), missed);
    }
    return "<tr><td>T60 of the " + name + ", s</td>" + times + "</tr>\n<tr><td>over its middle</td>" +
           shares + "</tr>\n";
}

/// Decay times of the whole and of the reverb, beside the shape that a room has.
std::string octaveTable(const SceneMeasures& measures) {
    const auto shapes = measures.target->decayShapes();
    std::string heads;
    std::string goals;
    for (const double octaveHz : roomOctavesHz) {
        heads += "<th class=\"number\">" + shortest(octaveHz) + " Hz</th>";
        const auto* const shape = std::ranges::find(shapes, octaveHz, &DecayShape::centreHz);
        goals += shape != shapes.end() ? "<td class=\"number target\">" + shortest(shape->least) + " to " +
                                             shortest(shape->most) + "</td>"
                                       : "<td></td>";
    }
    return "<table><tr><th>Octave</th>" + heads + "</tr>\n" +
           decayRows("whole", measures.decays, *measures.target) +
           decayRows("reverb alone", measures.reverbDecays, *measures.target) +
           "<tr><td class=\"target\">over the middle, to be</td>" + goals + "</tr></table>\n";
}

std::string section(const SceneChapter& chapter, const SceneFindings& finding, std::span<const Plot> plots) {
    const SceneMeasures& measures = finding.measures;
    const std::string anchor = anchorOf(measures.scene);
    std::ostringstream text;
    text << "<section id=\"" << anchor << "\"><h3>" << escaped(measures.scene) << "</h3>\n<p>C50 "
         << ratioText(measures.clarity50Db, " dB") << ", C80 " << ratioText(measures.clarity80Db, " dB")
         << ", direct over the rest " << ratioText(measures.directToRestDb, " dB") << "; "
         << fixedText(finding.stereoLufs, 1) << " LUFS in 2.0, " << fixedText(finding.surroundLufs, 1)
         << " LUFS in 5.1.";
    if (measures.target) {
        text << " T60 of the whole " << fixedText(measures.decaySeconds, 2) << " s, of the reverb alone "
             << fixedText(measures.reverbDecaySeconds, 2) << " s; late reverb at full density after "
             << milliseconds(measures.reverbDensity.fullSeconds) << " ms.";
        if (const auto missed =
                missedGoals(measures, coherenceError(measures.coherence, chapter.coherenceTarget));
            !missed.empty())
            text << " <span class=\"missed\">Outside tolerance: " << joined(missed) << ".</span>";
        text << "</p>\n" << octaveTable(measures);
    } else {
        text << " This Scene has no reverb.</p>\n";
    }
    text << "<div class=\"pair\">" << figuresOf(plots, anchor, chapter) << "</div></section>\n";
    return text.str();
}

} // namespace

std::string ratioText(double decibels, std::string_view unit) {
    constexpr double missingDb = 120;
    return std::abs(decibels) < missingDb ? fixedText(decibels, 1) + std::string(unit) : "–";
}

std::string anchorOf(std::string_view scene) {
    std::string anchor;
    for (const char letter : scene)
        anchor += std::isalnum(static_cast<unsigned char>(letter)) != 0
                      ? static_cast<char>(std::tolower(static_cast<unsigned char>(letter)))
                      : '-';
    return anchor;
}

std::string sceneOverview(const SceneChapter& chapter, std::span<const Plot> plots) {
    std::string rows;
    for (const SceneFindings& finding : chapter.scenes)
        rows += overviewRow(chapter, finding);
    return "<section id=\"overview\"><h2>Rooms</h2>\n" + verdict(chapter) +
           "<table class=\"tight\"><tr><th rowspan=\"2\">Scene</th><th colspan=\"3\">T60, s</th><th "
           "colspan=\"2\">C50, "
           "dB</th>"
           "<th>C80, dB</th><th colspan=\"2\">Direct over the rest, dB</th><th colspan=\"2\">Full density, "
           "ms</th>"
           "<th colspan=\"2\">Coherence off by</th><th colspan=\"2\">Loudness, LUFS</th></tr>\n<tr>"
           "<th class=\"number\">goal</th><th class=\"number\">whole</th><th class=\"number\">reverb "
           "alone</th>"
           "<th class=\"number\">goal</th><th class=\"number\">is</th><th class=\"number\">is</th><th "
           "class=\"number\">goal</th>"
           "<th class=\"number\">is</th><th class=\"number\">by</th><th class=\"number\">is</th>"
           "<th class=\"number\">below 400 Hz</th><th class=\"number\">above</th><th "
           "class=\"number\">2.0</th>"
           "<th class=\"number\">5.1</th></tr>\n" +
           rows +
           "</table>\n<p>✗ marks what lies outside its tolerance: T60 of the whole by more than 10 %, C50 by "
           "more "
           "than 1.5 dB, "
           "the worst band of the coherence by more than 0.1 below 400 Hz and 0.15 above, "
           "and, in a room's own table, an octave's T60 over the middle by anything: there the range is the "
           "tolerance. "
           "Shape in the list above is that of the whole. The whole's T60 differs from that of the reverb "
           "alone because "
           "direct sound and first reflections stand out at its start, so that its decay from −5 to −35 dB "
           "is not the "
           "reverb's. "
           "The moment of full density may lie behind its goal by half of the window that it is measured "
           "with, as only "
           "from then on the window holds nothing older: 10 ms, and 2.5 ms where the goal is below 20 ms."
           " The other goals have no tolerance.</p>\n" +
           figuresOf(plots, "all", chapter) + "</section>\n";
}

std::string sceneSections(const SceneChapter& chapter, std::span<const Plot> plots) {
    std::string text;
    for (const SceneFindings& finding : chapter.scenes)
        text += section(chapter, finding, plots);
    return text;
}

} // namespace orvane::kestrum::tools
