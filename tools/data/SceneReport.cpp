// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/SceneReport.h"

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
    if (!clarityWithin(measures))
        missed.emplace_back("C50");
    if (!coherence.within())
        missed.emplace_back("coherence");
    return missed;
}

/// The shape's bounds, with the tolerance of a decay time.
bool shapeWithin(const DecayShape& shape, double share) {
    return share >= shape.least * (1 - decayTolerance) && share <= shape.most * (1 + decayTolerance);
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
        return row + nothing + nothing + nothing + number(ratioText(measures.clarity50Db)) +
               number(ratioText(measures.clarity80Db)) + nothing +
               number(ratioText(measures.directToRestDb)) + nothing + nothing + nothing + nothing +
               number(fixedText(finding.stereoLufs, 1)) + number(fixedText(finding.surroundLufs, 1)) +
               "</tr>\n";
    const RoomTarget& target = *measures.target;
    const CoherenceError coherence = coherenceError(measures.coherence, chapter.coherenceTarget);
    row += pair(target.decaySeconds, measures.decaySeconds, 2, !decayWithin(measures));
    row += pair(target.clarity50Db, measures.clarity50Db, 1, !clarityWithin(measures));
    row += number(ratioText(measures.clarity80Db));
    row += pair(target.directToRestDb, measures.directToRestDb, 1, false);
    row += "<td class=\"number target\">" + milliseconds(target.fullDensitySeconds) + "</td>" +
           number(milliseconds(measures.reverbDensity.fullSeconds));
    row += number(fixedText(coherence.low, 2), coherence.low > coherenceToleranceLow);
    row += number(fixedText(coherence.high, 2), coherence.high > coherenceToleranceHigh);
    return row + number(fixedText(finding.stereoLufs, 1)) + number(fixedText(finding.surroundLufs, 1)) +
           "</tr>\n";
}

std::string verdict(const SceneChapter& chapter) {
    std::size_t rooms = 0;
    std::string missed;
    for (const SceneFindings& finding : chapter.scenes) {
        if (!finding.measures.target)
            continue;
        ++rooms;
        const auto goals = missedGoals(finding.measures,
                                       coherenceError(finding.measures.coherence, chapter.coherenceTarget));
        if (!goals.empty())
            missed +=
                (missed.empty() ? "" : "; ") + escaped(finding.measures.scene) + " (" + joined(goals) + ")";
    }
    if (missed.empty())
        return "<p><strong>All " + std::to_string(rooms) +
               " rooms meet their goals for decay, clarity and coherence.</strong></p>\n";
    return "<p><strong>Outside a tolerance:</strong> " + missed + ".</p>\n";
}

std::string figuresOf(std::span<const Plot> plots, const std::string& prefix, const SceneChapter& chapter) {
    std::string figures;
    for (const Plot& plot : plots)
        if (plot.name.starts_with(prefix + "."))
            figures += figureElement(plot, chapter.folder);
    return figures;
}

/// Decay times, and the shape that they make over the frequency beside the one that a room has.
std::string octaveTable(const SceneMeasures& measures) {
    std::string heads;
    std::string times;
    std::string shares;
    std::string goals;
    for (std::size_t octave = 0; octave < roomOctavesHz.size(); ++octave) {
        heads += "<th class=\"number\">" + shortest(roomOctavesHz[octave]) + " Hz</th>";
        const DecayTime& time = measures.decays[octave];
        const auto shape = std::ranges::find(decayShapes(), roomOctavesHz[octave], &DecayShape::centreHz);
        const bool hasGoal = shape != decayShapes().end();
        if (time.seconds <= 0 || measures.decaySeconds <= 0) {
            times += nothing;
            shares += nothing;
        } else {
            const double share = time.seconds / measures.decaySeconds;
            times += number(fixedText(time.seconds, 2) + (time.rangeDb == 20 ? " (T20)" : ""));
            shares += number(fixedText(share, 2), hasGoal && !shapeWithin(*shape, share));
        }
        goals += hasGoal ? "<td class=\"number target\">" + shortest(shape->least) + " to " +
                               shortest(shape->most) + "</td>"
                         : "<td></td>";
    }
    return "<table><tr><th>Octave</th>" + heads + "</tr>\n<tr><td>T60, s</td>" + times +
           "</tr>\n<tr><td>over the middle</td>" + shares + "</tr>\n<tr><td class=\"target\">to be</td>" +
           goals + "</tr></table>\n";
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
        text << " T60 " << fixedText(measures.decaySeconds, 2) << " s; late reverb at full density after "
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
           "<table class=\"tight\"><tr><th rowspan=\"2\">Scene</th><th colspan=\"2\">T60, s</th><th "
           "colspan=\"2\">C50, "
           "dB</th>"
           "<th>C80, dB</th><th colspan=\"2\">Direct over the rest, dB</th><th colspan=\"2\">Full density, "
           "ms</th>"
           "<th colspan=\"2\">Coherence off by</th><th colspan=\"2\">Loudness, LUFS</th></tr>\n<tr>"
           "<th class=\"number\">goal</th><th class=\"number\">is</th><th class=\"number\">goal</th>"
           "<th class=\"number\">is</th><th class=\"number\">is</th><th class=\"number\">goal</th>"
           "<th class=\"number\">is</th><th class=\"number\">by</th><th class=\"number\">is</th>"
           "<th class=\"number\">below 400 Hz</th><th class=\"number\">above</th><th "
           "class=\"number\">2.0</th>"
           "<th class=\"number\">5.1</th></tr>\n" +
           rows +
           "</table>\n<p>✗ marks what lies outside its tolerance: T60 by more than 10 %, C50 by more than "
           "1.5 dB, "
           "the worst band of the coherence by more than 0.1 below 400 Hz and 0.15 above."
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
