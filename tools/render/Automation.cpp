// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/Automation.h"

#include "render/RenderError.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <string_view>

namespace orvane::kestrum::render {

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// A field without blanks and without the quotation marks that spreadsheets put round texts.
std::string_view field(std::string_view text) {
    std::string_view bare = trimmed(text);
    if (bare.size() >= 2 && bare.starts_with('"') && bare.ends_with('"'))
        bare = trimmed(bare.substr(1, bare.size() - 2));
    return bare;
}

/// Whether a terminal would take a sign for an order: control characters, of ASCII or as UTF-8 has the others.
bool steersTerminal(std::string_view text) {
    for (std::size_t index = 0; index < text.size(); ++index) {
        const auto byte = static_cast<unsigned char>(text[index]);
        const auto next = static_cast<unsigned char>(index + 1 < text.size() ? text[index + 1] : '\0');
        if (byte < 0x20 || byte == 0x7f || (byte == 0xc2 && (next & 0xe0U) == 0x80U))
            return true;
    }
    return false;
}

constexpr std::string_view byteOrderMark = "\xef\xbb\xbf"; // some editors begin a file with it

} // namespace

std::vector<AutomationLine> parseAutomation(std::istream& text) {
    std::vector<AutomationLine> lines;
    std::string raw;
    for (std::size_t number = 1; std::getline(text, raw); ++number) {
        const std::string_view line =
            trimmed(std::string_view(raw).substr(number == 1 && raw.starts_with(byteOrderMark) ? 3 : 0));
        if (line.empty() || line.starts_with('#'))
            continue;
        const auto first = line.find(',');
        const auto second = first == std::string_view::npos ? first : line.find(',', first + 1);
        const std::string place = "Line " + std::to_string(number) + " of the automation";
        if (second == std::string_view::npos)
            throw RenderError(place + " is not of the form seconds,parameter,value.");
        const std::string_view time = field(line.substr(0, first));
        const std::string_view parameter = field(line.substr(first + 1, second - first - 1));
        const std::string_view value = field(line.substr(second + 1));
        if (steersTerminal(time) || steersTerminal(parameter) ||
            steersTerminal(value)) // or sentences would show them
            throw RenderError(place + " holds control characters: save the file as plain text.");
        if (lines.empty() && equalIgnoringCase(time, "seconds"))
            continue;
        AutomationLine entry{
            parseNumber(time, "the time in line " + std::to_string(number) + " of the automation"),
            std::string(parameter), std::string(value)};
        if (entry.seconds < 0)
            throw RenderError(place + " has a negative time: count seconds from the input's start.");
        lines.push_back(std::move(entry));
    }
    return lines;
}

std::vector<AutomationLine> readAutomation(const std::filesystem::path& path) {
    std::ifstream file(path);
    std::vector<AutomationLine> lines;
    if (file)
        lines = parseAutomation(file);
    if (!file.eof()) // also a folder, which opens and then cannot be read
        throw RenderError("The automation file \"" + path.string() +
                          "\" cannot be read: name a file with lines seconds,parameter,value.");
    return lines;
}

std::vector<AutomationEvent> resolveAutomation(const std::vector<AutomationLine>& lines,
                                               const Controls& controls, double sampleRate) {
    std::vector<AutomationEvent> events;
    events.reserve(lines.size());
    for (const AutomationLine& line : lines)
        events.push_back({static_cast<std::uint64_t>(std::llround(line.seconds * sampleRate)),
                          controls.resolve(line.parameter, line.value)});
    std::ranges::stable_sort(events, {}, &AutomationEvent::frame);
    return events;
}

} // namespace orvane::kestrum::render
