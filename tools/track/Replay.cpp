// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/Replay.h"

#include "track/TrackError.h"

#include <array>
#include <charconv>
#include <cmath>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

namespace orvane::kestrum::track {

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const auto first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? ""
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// Empty unless the line is exactly four finite numbers.
std::optional<std::array<double, 4>> fourNumbers(std::string_view line) {
    std::array<double, 4> numbers{};
    for (std::size_t index = 0; index < numbers.size(); ++index) {
        const auto comma = line.find(',');
        if ((comma == std::string_view::npos) != (index + 1 == numbers.size()))
            return std::nullopt;
        const std::string_view field = trimmed(line.substr(0, comma));
        const auto* const end = field.data() + field.size();
        const auto [parsed, failure] = std::from_chars(field.data(), end, numbers[index]);
        if (failure != std::errc() || parsed != end || !std::isfinite(numbers[index]))
            return std::nullopt;
        line.remove_prefix(comma == std::string_view::npos ? line.size() : comma + 1);
    }
    return numbers;
}

} // namespace

std::vector<ReplayLine> readReplay(const std::filesystem::path& path) {
    std::ifstream file(path);
    if (!file)
        throw TrackError("The movement \"" + path.string() + "\" cannot be read: name a file that exists.");
    std::vector<ReplayLine> lines;
    std::string text;
    for (std::size_t number = 1; std::getline(file, text); ++number) {
        const std::string_view line = trimmed(text);
        if (line.empty() || line.front() == '#' || line.starts_with("seconds"))
            continue;
        const auto numbers = fourNumbers(line);
        if (!numbers)
            throw TrackError(
                "Line " + std::to_string(number) + " of \"" + path.string() +
                "\" is not seconds,yaw,pitch,roll: write four numbers with commas between them.");
        const auto [seconds, yaw, pitch, roll] = *numbers;
        if (seconds < (lines.empty() ? 0 : lines.back().seconds))
            throw TrackError("Line " + std::to_string(number) + " of \"" + path.string() +
                             "\" lies before the one above it: sort the lines by their seconds.");
        lines.push_back({seconds, {yaw, pitch, roll}});
    }
    if (lines.empty())
        throw TrackError("The movement \"" + path.string() +
                         "\" is empty: write lines with seconds,yaw,pitch,roll into it.");
    return lines;
}

} // namespace orvane::kestrum::track
