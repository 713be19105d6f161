// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/Page.h"

#include "channels/ChannelNames.h"
#include "check/Base64.h"
#include "check/CheckError.h"
#include "check/Downmix.h"
#include "check/LoudnessMatch.h"
#include "check/PageFiles.h"
#include "check/SoundWindows.h"
#include "check/Spectrum.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <ostream>
#include <string_view>

namespace orvane::kestrum::check {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view mark = "<meta name=\"generator\" content=\"kestrum check\">";

/// So many decimals are more than the page shows, and keep it small.
double rounded(double value, double steps) { return std::round(value * steps) / steps; }

template <typename Values>
Json numbers(const Values& values, double added, double factor, double steps) {
    Json list = Json::array();
    for (const double value : values)
        list.push_back(rounded((value + added) * factor, steps));
    return list;
}

/// Levels and curves as matched, loudness and peak as rendered too.
Json trackFacts(const PageTrack& track) {
    const TrackMeasures& measures = track.measures;
    const double gain = std::pow(10.0, track.gainDb / 20);
    Json facts;
    facts["name"] = track.name;
    facts["shownAs"] = track.shownAs;
    facts["section"] = track.section;
    facts["file"] = track.file;
    facts["gainDb"] = rounded(track.gainDb, 100);
    facts["loudness"] = rounded(measures.loudness.value_or(0), 100);
    facts["loudnessRange"] = rounded(measures.loudnessRange, 100);
    facts["truePeakDb"] = rounded(measures.truePeakDb, 100);
    facts["windowCount"] = track.windows.size();
    facts["spectrumDb"] = numbers(measures.spectrumDb, track.gainDb, 1, 100);
    facts["shortTerm"] = numbers(measures.shortTerm, track.gainDb, 1, 10);
    facts["lowest"] = numbers(measures.lowest, 0, gain, 1000);
    facts["highest"] = numbers(measures.highest, 0, gain, 1000);
    return facts;
}

/// One row per channel: its short name, and the gains to left and right.
Json downmixFacts(const std::string& layout) {
    const auto table = core::layoutTable();
    const auto names = channels::briefNames(*std::ranges::find(table, layout, &core::LayoutRow::name));
    const auto gains = downmixGains(layout);
    Json rows = Json::array();
    for (std::size_t channel = 0; channel < gains.size(); ++channel)
        rows.push_back(
            {names[channel], rounded(gains[channel].left, 10000), rounded(gains[channel].right, 10000)});
    return rows;
}

std::string factsOf(const PageContent& content) {
    Json facts;
    facts["mix"] = content.mix.path.filename().string();
    facts["layout"] = content.layout;
    facts["sampleRate"] = content.mix.sampleRate;
    facts["channelCount"] = content.mix.channelCount;
    facts["mixSeconds"] = content.mix.seconds();
    facts["seconds"] = content.timelineSeconds;
    facts["loudness"] = rounded(content.loudness, 100);
    facts["limitedBy"] = content.limitedBy;
    facts["highestTruePeakDb"] = highestTruePeakDb;
    facts["sound"] = {{"sampleRate", windows::sampleRate},
                      {"windowFrames", windows::windowFrames},
                      {"leadFrames", windows::leadFrames},
                      {"trailFrames", windows::trailFrames}};
    facts["bandsHz"] = numbers(bandCentresHz(), 0, 1, 1000);
    facts["downmix"] = downmixFacts(content.layout);
    facts["tracks"] = Json::array();
    for (const PageTrack& track : content.tracks)
        facts["tracks"].push_back(trackFacts(track));
    // A file's name may hold anything; "<" would end the element that holds the text.
    std::string text = facts.dump(-1, ' ', false, Json::error_handler_t::replace);
    for (std::size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at))
        text.replace(at, 1, "\\u003c");
    return text;
}

/// Window by window, all tracks of each: what comes first is played first, while the rest is still being read.
void writeSound(const PageContent& content, std::ostream& out) {
    std::size_t windowCount = 0;
    for (const PageTrack& track : content.tracks)
        windowCount = std::max(windowCount, track.windows.size());
    for (std::size_t window = 0; window < windowCount; ++window)
        for (std::size_t track = 0; track < content.tracks.size(); ++track)
            if (window < content.tracks[track].windows.size())
                out << "<script type=\"text/plain\" id=\"sound-" << track << "-" << window << "\">"
                    << content.tracks[track].windows[window] << "</script>\n";
}

void writeFont(std::string_view file, int weight, std::ostream& out) {
    out << "@font-face{font-family:Lato;font-weight:" << weight << ";src:url(data:font/ttf;base64,"
        << base64(pageFile(file)) << ")}\n";
}

/// Writes what stands for one "{{word}}" of the template.
void writePart(std::string_view word, const PageContent& content, std::ostream& out) {
    if (word == "generator")
        out << mark;
    else if (word == "fonts") {
        writeFont("Lato-Regular.ttf", 400, out);
        writeFont("Lato-Medium.ttf", 500, out);
    } else if (word == "facts")
        out << factsOf(content);
    else if (word == "sound")
        writeSound(content, out);
    else
        out << pageFile(word);
}

} // namespace

void writePage(const PageContent& content, const std::filesystem::path& path) {
    std::ofstream out(path, std::ios::binary);
    std::string_view rest = pageFile("page.html");
    for (std::size_t open = rest.find("{{"); open != std::string_view::npos; open = rest.find("{{")) {
        const std::size_t close = rest.find("}}", open);
        out << rest.substr(0, open);
        writePart(rest.substr(open + 2, close - open - 2), content, out);
        rest.remove_prefix(close + 2);
    }
    out << rest;
    out.close();
    if (!out)
        throw CheckError("The page \"" + path.string() + "\" cannot be written: is the disk full?");
}

bool isPage(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::string head(1024, '\0');
    file.read(head.data(), static_cast<std::streamsize>(head.size()));
    return head.find(mark) != std::string::npos;
}

} // namespace orvane::kestrum::check
