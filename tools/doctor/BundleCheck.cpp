// SPDX-License-Identifier: GPL-3.0-or-later
#include "doctor/Checks.h"
#include "doctor/Remedies.h"

#include "headlink/ChildProcess.h"
#include "host/Module.h"
#include "host/PluginInstance.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>

namespace orvane::kestrum::doctor {

namespace fs = std::filesystem;

namespace {

using headlink::ChildResult;

constexpr const char* subject = "bundle";

/// Where the bundle lies: where hosts look, in their order, then beside the program.
std::vector<fs::path> bundles(const Places& places) {
    std::vector<fs::path> found;
    std::error_code failure;
    for (const fs::path& folder : places.hostFolders())
        if (fs::is_directory(folder / bundleName, failure))
            found.push_back(folder / bundleName);
    return found;
}

/// The first part that is closed on the way to a bundle in a folder of the system; empty when there is none. The user's own
/// folders are the user's affair.
fs::path closedHostFolder(const Places& places) {
    for (const fs::path& folder : places.hostFolders()) {
        if (!places.home.empty() && folder.parent_path() == places.home)
            continue;
        if (fs::path closed = firstClosed(folder / bundleName, places.user); !closed.empty())
            return closed;
    }
    return {};
}

/// Whether noise at the input is heard at the output. Louder than nothing after a tenth of a second is enough: an instance
/// without data is silent.
bool givesSound(host::PluginInstance& plugin) {
    constexpr std::uint32_t frames = 512;
    constexpr int blockCount = 16;
    constexpr float level = 0.1F;
    plugin.setChannelCounts(2, 2);
    plugin.prepare(48000, frames, host::ProcessMode::offline);
    std::vector<std::vector<float>> in(2, std::vector<float>(frames));
    std::vector<std::vector<float>> out(2, std::vector<float>(frames));
    for (std::uint32_t frame = 0; frame < frames; ++frame)
        for (std::vector<float>& channel : in)
            channel[frame] = frame % 2 == 0 ? level : (frame % 3 == 0 ? -level : 0.0F);
    const std::vector<const float*> inputs{in[0].data(), in[1].data()};
    const std::vector<float*> outputs{out[0].data(), out[1].data()};
    bool sound = false;
    for (int block = 0; block < blockCount; ++block) {
        plugin.process(inputs, outputs, frames);
        sound = sound || std::ranges::any_of(out[0], [](float sample) { return sample != 0; });
    }
    plugin.release();
    return sound;
}

/// Runs in the child. @return the version, with a mark in front when it gave sound.
std::string tryBundle(const fs::path& bundle) {
    unsetenv("DISPLAY"); // no window is wanted, and a screen that has gone must not count
    host::PluginInstance plugin(std::make_shared<host::Module>(bundle));
    return (givesSound(plugin) ? "+" : "-") + plugin.version();
}

Finding loaded(const fs::path& bundle, const Places& places) {
    constexpr std::chrono::seconds limit{20};
    const std::string name = inQuotes(bundle.string());
    const ChildResult result = headlink::inChildProcess([&bundle] { return tryBundle(bundle); }, limit);
    switch (result.end) {
    case ChildResult::End::answered:
        break;
    case ChildResult::End::refused:
        return {subject, Verdict::fault, name + " cannot be loaded: " + result.text, reinstallPlugin(places)};
    case ChildResult::End::crashed:
        return {subject, Verdict::fault, name + " crashes when it is loaded.", reinstallPlugin(places)};
    case ChildResult::End::tooLate:
        return {subject, Verdict::fault,
                name + " hangs when it renders: a tracker may have left the link locked; see \"tracker\".",
                reinstallPlugin(places)};
    }
    const std::string version = result.text.substr(1);
    if (result.text.front() == '-')
        return {subject, Verdict::fault,
                name + ", version " + version +
                    ", loads but gives no sound: its data is not usable; see \"data\".",
                mendData(places)};
    return {subject, Verdict::good, name + ", version " + version + ", loads and renders.", {}};
}

/// As the bundle's own description says, which is read without loading anything; empty without one.
std::string versionOf(const fs::path& bundle) {
    std::ifstream file(bundle / "Contents" / "Resources" / "moduleinfo.json");
    const auto described = nlohmann::json::parse(file, nullptr, false);
    if (!described.is_object() || !described.contains("Version") || !described["Version"].is_string())
        return {};
    const std::string version = described["Version"];
    return version.find_first_not_of("0123456789.") == std::string::npos ? version : std::string();
}

/// The parts between the dots, to be compared as numbers.
std::vector<int> numbersOf(const std::string& version) {
    std::vector<int> numbers;
    std::istringstream parts(version);
    for (int number = 0; parts >> number; parts.ignore())
        numbers.push_back(number);
    return numbers;
}

Finding closedFinding(const fs::path& closed) {
    return {subject, Verdict::fault, "Not everybody may read " + inQuotes(closed.string()) + ".",
            openUp(closed)};
}

/// Of several bundles.
Finding severalFinding(const std::vector<fs::path>& found, const Places& places) {
    std::string list;
    bool known = true;
    for (const fs::path& bundle : found) {
        const std::string version = versionOf(bundle);
        known = known && !version.empty();
        list += (list.empty() ? "" : " and ") + inQuotes(bundle.parent_path().string()) + " (version " +
                (version.empty() ? "unknown" : version) + ")";
    }
    const auto& oldest = *std::ranges::min_element(
        found, {}, [](const fs::path& bundle) { return numbersOf(versionOf(bundle)); });
    return {"hosts", Verdict::warning,
            "The bundle lies in " + list + ", and each host takes the one that it likes.",
            known ? removal(oldest, places) : "# remove the bundle that you do not want"};
}

} // namespace

Findings checkBundle(const Places& places) {
    std::vector<fs::path> found = bundles(places);
    std::error_code failure;
    if (found.empty() && !places.program.empty() && fs::is_directory(places.program / bundleName, failure))
        found.push_back(places.program / bundleName);
    if (found.empty())
        if (const fs::path closed = closedHostFolder(places); !closed.empty())
            return {closedFinding(closed)};
    if (found.empty())
        return {{subject, Verdict::fault, "The bundle " + inQuotes(bundleName) + " is nowhere.",
                 reinstallPlugin(places)}};
    const fs::path& bundle = found.front();
    const fs::path binary = host::Module::binaryOf(bundle);
    if (const fs::path closed = firstClosed(binary, places.user); !closed.empty())
        return {closedFinding(closed)};
    if (!fs::exists(binary, failure))
        return {{subject, Verdict::fault,
                 inQuotes(bundle.string()) +
                     " holds no binary for this machine: " + inQuotes(binary.string()) + " is missing.",
                 reinstallPlugin(places)}};
    if (!places.thisMachine())
        return {{subject,
                 Verdict::good,
                 inQuotes(bundle.string()) + " is there and readable; another system's is not loaded.",
                 {}}};
    return {loaded(bundle, places)};
}

Findings checkHostFolders(const Places& places) {
    const std::vector<fs::path> found = bundles(places);
    if (found.empty()) {
        std::error_code failure;
        const fs::path beside = places.program / bundleName;
        if (places.program.empty() || !fs::is_directory(beside, failure))
            return {};
        return {{"hosts", Verdict::warning,
                 "No host finds the bundle: it lies in " + inQuotes(places.program.string()) + " only.",
                 "mkdir -p ~/.vst3 && cp -r " + shellWord(beside) + " ~/.vst3/"}};
    }
    if (found.size() == 1)
        return {{"hosts",
                 Verdict::good,
                 "Hosts find the bundle in " + inQuotes(found.front().parent_path().string()) +
                     "; let yours scan that folder.",
                 {}}};
    return {severalFinding(found, places)};
}

} // namespace orvane::kestrum::doctor
