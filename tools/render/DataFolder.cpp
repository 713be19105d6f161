// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/DataFolder.h"

#include "render/RenderError.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace orvane::kestrum::render {

namespace {

struct RateRow {
    unsigned rate;
    const char* responses; ///< The file with the head's responses that serves this rate.
};

constexpr std::array<RateRow, 7> rates{{{24000, "OVNdata122.dat"},
                                        {44100, "OVNdata120.dat"},
                                        {48000, "OVNdata121.dat"},
                                        {88200, "OVNdata120.dat"},
                                        {96000, "OVNdata121.dat"},
                                        {176400, "OVNdata120.dat"},
                                        {192000, "OVNdata121.dat"}}};

} // namespace

std::vector<unsigned> servedRates() {
    std::vector<unsigned> served;
    served.reserve(rates.size());
    for (const RateRow& row : rates)
        served.push_back(row.rate);
    return served;
}

void requireRateAndData(double sampleRate, const std::filesystem::path& folder) {
    const auto row = std::ranges::find_if(
        rates, [sampleRate](const RateRow& candidate) { return candidate.rate == sampleRate; });
    if (row == rates.end())
        throw RenderError(
            "The plug-in does not serve " + std::to_string(std::lround(sampleRate)) +
            " Hz: resample the input to 24000, 44100, 48000, 88200, 96000, 176400 or 192000 Hz.");
    std::error_code ignored;
    if (!std::filesystem::is_directory(folder, ignored))
        throw RenderError("The plug-in's data folder \"" + folder.string() +
                          "\" is missing: \"kestrum doctor\" names the command that installs it.");
    if (!std::filesystem::is_regular_file(folder / row->responses, ignored))
        throw RenderError("The plug-in's data folder \"" + folder.string() + "\" lacks " + row->responses +
                          ": \"kestrum doctor\" names the command that installs it.");
}

} // namespace orvane::kestrum::render
