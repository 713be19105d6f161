// SPDX-License-Identifier: GPL-3.0-or-later
#include "doctor/Checks.h"

#include "headlink/ChildProcess.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <memory>
#include <optional>
#include <set>
#include <sstream>

namespace orvane::kestrum::doctor {

namespace fs = std::filesystem;

namespace {

constexpr const char* subject = "sound";
constexpr std::array servedRates{24000L, 44100L, 48000L, 88200L, 96000L, 176400L, 192000L};

bool served(long rate) { return std::ranges::find(servedRates, rate) != servedRates.end(); }

/// The number that follows a text, if there is one.
std::optional<long> numberAfter(const std::string& text, const std::string& mark) {
    const auto at = text.find(mark);
    if (at == std::string::npos)
        return std::nullopt;
    std::istringstream rest(text.substr(at + mark.size()));
    long number = 0;
    return rest >> number ? std::optional(number) : std::nullopt;
}

/// The rates at which the kernel's sound cards play at this moment: the files tell nothing of an output that is closed.
std::set<long> playingRates(const Places& places) {
    std::set<long> rates;
    std::error_code failure;
    fs::recursive_directory_iterator entry(places.below("/proc/asound"),
                                           fs::directory_options::skip_permission_denied, failure);
    for (; entry != fs::recursive_directory_iterator(); entry.increment(failure)) {
        if (failure)
            break;
        const std::string path = entry->path().string();
        if (entry->path().filename() != "hw_params" || path.find("p/sub") == std::string::npos) // p: playback
            continue;
        std::ifstream file(path);
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        if (const auto rate = numberAfter(text, "rate: "))
            rates.insert(*rate);
    }
    return rates;
}

bool hasCard(const Places& places) {
    std::ifstream file(places.below("/proc/asound/cards"));
    std::string line;
    return std::getline(file, line) && line.find("no soundcards") == std::string::npos;
}

std::string outputOf(const char* command) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(command, "r"), pclose);
    std::string text;
    std::array<char, 4096> piece{};
    while (pipe != nullptr) {
        const std::size_t count = std::fread(piece.data(), 1, piece.size(), pipe.get());
        if (count == 0)
            break;
        text.append(piece.data(), count);
    }
    return text;
}

/// The rate of PipeWire's clock, where it runs: the one that it is held to, else the present one.
std::optional<long> pipeWireRate() {
    using headlink::ChildResult;
    const ChildResult result = headlink::inChildProcess(
        [] { return outputOf("pw-metadata -n settings 2>/dev/null"); }, std::chrono::seconds(3));
    if (result.end != ChildResult::End::answered)
        return std::nullopt;
    const auto forced = numberAfter(result.text, "'clock.force-rate' value:'");
    return forced && *forced > 0 ? forced : numberAfter(result.text, "'clock.rate' value:'");
}

Finding about(const std::string& what, long rate, const char* remedy) {
    const std::string text = what + " runs at " + std::to_string(rate) + " Hz";
    if (served(rate))
        return {subject, Verdict::good, text + ", which the plug-in serves.", {}};
    return {subject, Verdict::fault, text + ", where the plug-in is muted.", remedy};
}

} // namespace

Findings checkSound(const Places& places) {
    Findings findings;
    if (places.thisMachine())
        if (const auto rate = pipeWireRate())
            findings.push_back(about("PipeWire", *rate, "pw-metadata -n settings 0 clock.force-rate 48000"));
    if (findings.empty())
        for (const long rate : playingRates(places))
            findings.push_back(about("An output of a sound card", rate,
                                     "# choose 48000 Hz in the audio settings of the DAW"));
    if (!findings.empty())
        return findings;
    if (hasCard(places))
        return {{subject,
                 Verdict::note,
                 "No output of a sound card is open: choose a rate that the plug-in serves in the DAW, such "
                 "as 48000 Hz.",
                 {}}};
    return {{subject, Verdict::note, "There is no sound card; rendering needs none.", {}}};
}

} // namespace orvane::kestrum::doctor
