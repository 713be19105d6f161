// SPDX-License-Identifier: GPL-3.0-or-later
#include "doctor/Checks.h"
#include "doctor/ChildProcess.h"
#include "doctor/Remedies.h"

#include "host/Module.h"
#include "host/PluginInstance.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>

namespace orvane::kestrum::doctor {

namespace fs = std::filesystem;

namespace {

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
    const ChildResult result = inChildProcess([&bundle] { return tryBundle(bundle); }, limit);
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
    if (places.thisMachine() && result.text.front() == '-')
        return {subject, Verdict::fault,
                name + ", version " + version +
                    ", loads but gives no sound: its data is not usable; see \"data\".",
                mendData(places)};
    return {subject,
            Verdict::good,
            name + ", version " + version + (places.thisMachine() ? ", loads and renders." : ", loads."),
            {}};
}

} // namespace

Findings checkBundle(const Places& places) {
    std::vector<fs::path> found = bundles(places);
    std::error_code failure;
    if (found.empty() && !places.program.empty() && fs::is_directory(places.program / bundleName, failure))
        found.push_back(places.program / bundleName);
    if (found.empty())
        return {{subject, Verdict::fault, "The bundle " + inQuotes(bundleName) + " is nowhere.",
                 reinstallPlugin(places)}};
    const fs::path& bundle = found.front();
    const fs::path binary = host::Module::binaryOf(bundle);
    if (!fs::exists(binary, failure))
        return {{subject, Verdict::fault,
                 inQuotes(bundle.string()) +
                     " holds no binary for this machine: " + inQuotes(binary.string()) + " is missing.",
                 reinstallPlugin(places)}};
    if (const fs::path closed = firstClosed(binary, places.user); !closed.empty())
        return {{subject, Verdict::fault, "Not everybody may read " + inQuotes(closed.string()) + ".",
                 openUp(closed)}};
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
    std::string list;
    for (const fs::path& bundle : found)
        list += (list.empty() ? "" : " and ") + inQuotes(bundle.parent_path().string());
    return {{"hosts", Verdict::warning,
             "The bundle lies in " + list + ", and each host takes the one that it likes.",
             removal(found.front(), places)}};
}

} // namespace orvane::kestrum::doctor
