// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/RenderCommand.h"

#include "host/PluginInstance.h"
#include "host/PresetFile.h"
#include "render/DataFolder.h"
#include "render/DemoInput.h"
#include "render/Measurement.h"
#include "render/Names.h"
#include "render/ProgressBar.h"
#include "render/RenderError.h"
#include "render/Renderer.h"
#include "render/Sources.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <array>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>

namespace orvane::kestrum::render {

namespace {

constexpr const char* bundleName = "Orvane KESTRUM.vst3";
constexpr std::uint64_t widestBus = 16;
constexpr std::uint32_t largestBlock = 65536;

std::string inQuotes(std::string_view text) { return "\"" + std::string(text) + "\""; }

void checkBlock(std::uint32_t block) {
    if (block == 1)
        throw RenderError("The plug-in does not serve blocks of one sample: choose --block 2 or more.");
    if (block == 0 || block > largestBlock)
        throw RenderError("A block of " + std::to_string(block) + " samples is no use: choose --block 2 to " +
                          std::to_string(largestBlock) + ".");
}

void checkFiles(const RenderOptions& options) {
    std::error_code ignored;
    if (std::filesystem::equivalent(options.input, options.output, ignored))
        throw RenderError("Input and output are the same file: name another output.");
}

void loadState(host::PluginInstance& plugin, const std::filesystem::path& path) {
    const host::Preset preset = host::readPreset(path);
    if (!equalIgnoringCase(preset.classId, plugin.classId()))
        throw RenderError("The preset " + inQuotes(path.string()) +
                          " belongs to another plug-in: name one that was saved by " + plugin.name() + ".");
    plugin.setState(preset.state);
}

/// A layout that asks for more channels than the bus has makes the plug-in fall silent.
void requireEnoughChannels(const Choice& layout, std::uint64_t channelCount) {
    if (layout.channelCount > channelCount)
        throw RenderError("The layout " + inQuotes(layout.name) + " needs " +
                          std::to_string(layout.channelCount) + " channels and the input has " +
                          std::to_string(channelCount) +
                          ": name a smaller one, or give an input with a channel for each loudspeaker.");
}

/// Settles which layout is rendered, and sets it. @return its table entry.
const Choice& chooseLayout(host::IPlugin& plugin, const Controls& controls, const RenderOptions& options,
                           std::uint64_t channelCount, std::ostream& out) {
    std::string name;
    if (options.layout) {
        name = *options.layout;
    } else if (options.state) {
        name = controls.currentText("layout");
        out << "Layout " << inQuotes(name) << ", as the state has it.\n";
    } else if (const auto usual = usualLayout(channelCount)) {
        name = *usual;
        out << "Layout " << inQuotes(name) << ", chosen by the input's channel count (" << channelCount
            << "); --layout names another.\n";
    } else {
        throw RenderError("No usual layout has " + std::to_string(channelCount) +
                          " channels: name one of at most as many with --layout.");
    }
    const Choice& layout = layoutChoices().find(name);
    requireEnoughChannels(layout, channelCount);
    const ControlValue value = controls.resolve("layout", layout.name);
    plugin.setParameter(value.id, value.normalized);
    return layout;
}

void setParameters(host::IPlugin& plugin, const Controls& controls, const RenderOptions& options) {
    const std::array<std::pair<const char*, const std::optional<std::string>*>, 5> given{
        {{"scene", &options.scene},
         {"ambience", &options.ambience},
         {"focus", &options.focus},
         {"rotation", &options.rotation},
         {"gain", &options.gain}}};
    for (const auto& [parameter, value] : given) {
        if (!*value)
            continue;
        const ControlValue resolved = controls.resolve(parameter, **value);
        plugin.setParameter(resolved.id, resolved.normalized);
    }
}

/// @param value linear. @return decibels, empty for silence.
std::optional<double> decibels(double value) {
    if (!(value > 0))
        return std::nullopt;
    return 20 * std::log10(value);
}

std::string fixed(double number, int digits) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(digits) << number;
    return text.str();
}

nlohmann::json orNull(const std::optional<double>& value) {
    return value ? nlohmann::json(*value) : nlohmann::json(nullptr);
}

/// Facts vouch for a sound. Those of an earlier one go before it is written over, so that a run which is stopped
/// leaves none.
void withdrawFacts(const std::filesystem::path& path) {
    std::error_code ignored; // what cannot be removed cannot be written either, and is refused there
    if (std::filesystem::is_regular_file(path, ignored))
        std::filesystem::remove(path, ignored);
}

/// @throws RenderError when what the result was made of is no longer what it was at the start.
void requireUnchanged(const RenderOptions& options, const std::filesystem::path& bundle,
                      const std::string& sources) {
    if (sourcesText(options.input, bundle) != sources)
        throw RenderError(
            "The input " + inQuotes(options.input.string()) +
            ", the plug-in or its data changed during the rendering: render anew once they stay "
            "as they are.");
}

void writeJson(const std::filesystem::path& path, const nlohmann::ordered_json& facts) {
    std::ofstream file(path);
    file << facts.dump(2) << "\n";
    file.flush();
    if (!file)
        throw RenderError("The facts cannot be written to " + inQuotes(path.string()) +
                          ": name a file in a folder of yours with --json.");
}

} // namespace

std::filesystem::path findBundle(const std::filesystem::path& programFolder) {
    std::vector<std::filesystem::path> folders{programFolder};
    if (const char* const home = std::getenv("HOME"))
        folders.push_back(std::filesystem::path(home) / ".vst3");
    folders.insert(folders.end(), {"/usr/local/lib/vst3", "/usr/lib/vst3"});
    for (const auto& folder : folders)
        if (std::filesystem::is_directory(folder / bundleName))
            return folder / bundleName;
    throw RenderError("The bundle \"" + std::string(bundleName) +
                      "\" lies neither beside this program nor where plug-ins are "
                      "installed: build it (cmake --build --preset release) or name it with --plugin.");
}

std::filesystem::path chooseBundle(const std::optional<std::filesystem::path>& named) {
    if (!named)
        return findBundle(std::filesystem::read_symlink("/proc/self/exe").parent_path());
    if (!std::filesystem::is_directory(*named))
        throw RenderError("There is no bundle at " + inQuotes(named->string()) +
                          ": name the folder whose name ends in .vst3 with --plugin.");
    return *named;
}

void requireUtf8(const std::filesystem::path& path) {
    try {
        nlohmann::json(path.string()).dump();
    } catch (const nlohmann::json::type_error&) {
        throw RenderError("The name " + inQuotes(path.string()) +
                          " is not UTF-8, in which facts are written: rename the file or folder.");
    }
}

void runRender(const RenderOptions& options, std::ostream& out) {
    checkBlock(options.block);
    checkFiles(options);
    if (options.json)
        for (const auto& path : {options.input, options.output})
            requireUtf8(path);
    SoundFileSource source(options.input);
    const std::uint64_t channelCount = source.channelCount();
    if (channelCount > widestBus)
        throw RenderError("The input has " + std::to_string(channelCount) +
                          " channels and the plug-in takes 16 at most: leave some out.");
    requireRateAndData(source.sampleRate());

    const std::filesystem::path bundle = chooseBundle(options.plugin);
    const std::string sources = sourcesText(options.input, bundle);
    host::PluginInstance plugin(std::make_shared<host::Module>(bundle));
    if (!plugin.setChannelCounts(static_cast<unsigned>(channelCount), 2))
        throw RenderError("The plug-in refuses a bus of " + std::to_string(channelCount) +
                          " channels: give an input of another channel count.");
    if (options.state)
        loadState(plugin, *options.state);
    const Controls controls(plugin, layoutChoices(), sceneChoices());
    const Choice& layout = chooseLayout(plugin, controls, options, channelCount, out);
    setParameters(plugin, controls, options);

    RenderPlan plan;
    plan.sampleRate = source.sampleRate();
    plan.block = options.block;
    plan.varyingBlocks = options.varyingBlocks;
    plan.raw = options.raw;
    plan.realtime = options.realtime;
    plan.settleMilliseconds = options.settleMilliseconds;
    if (options.automation)
        plan.automation = resolveAutomation(readAutomation(*options.automation), controls, plan.sampleRate);
    for (const AutomationEvent& event : plan.automation)
        if (event.value.layout != nullptr)
            requireEnoughChannels(*event.value.layout, channelCount);

    plugin.prepare(plan.sampleRate, plan.block,
                   options.realtime ? host::ProcessMode::realtime : host::ProcessMode::offline);
    if (options.json)
        withdrawFacts(*options.json);
    SoundFileSink file(options.output, source.sampleRate());
    Measurement sink(source.sampleRate(), file);
    const auto started = std::chrono::steady_clock::now();
    RenderFacts facts;
    {
        ProgressBar bar(stderr);
        facts = renderStream(plugin, source, sink, plan, [&bar](double share) { bar.show(share); });
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    file.close();
    if (options.json)
        requireUnchanged(options, bundle, sources);
    if (options.saveState)
        host::writePreset(*options.saveState, {plugin.classId(), plugin.state()});

    const auto peakDb = decibels(sink.peak());
    const auto loudness = sink.integratedLoudness();
    const std::string scene = controls.currentText("scene");
    if (options.json) {
        nlohmann::ordered_json json;
        json["input"] = options.input.string();
        json["output"] = options.output.string();
        json["plugin"] = {{"name", plugin.name()}, {"version", plugin.version()}};
        json["sources"] = nlohmann::ordered_json::parse(sources);
        json["sampleRate"] = source.sampleRate();
        json["channels"] = channelCount;
        json["layout"] = layout.name;
        json["scene"] = scene;
        json["inputFrames"] = source.frameCount();
        json["fedFrames"] = facts.fedFrames;
        json["outputFrames"] = facts.writtenFrames;
        json["block"] = options.block;
        json["varyingBlocks"] =
            options.varyingBlocks ? nlohmann::json(*options.varyingBlocks) : nlohmann::json(nullptr);
        json["hostBlocks"] = facts.blockCount;
        json["latencyReported"] = plugin.latency();
        json["delayRemoved"] = facts.delayRemoved;
        json["raw"] = options.raw;
        json["meanBlockTimeShare"] = facts.meanLoad;
        json["worstBlockTimeShare"] = facts.worstLoad;
        json["seconds"] = seconds;
        json["peak"] = sink.peak();
        json["peakDb"] = orNull(peakDb);
        json["integratedLoudnessLufs"] = orNull(loudness);
        writeJson(*options.json, json);
    }
    plugin.release();

    if (!sink.finite())
        throw RenderError(
            "The plug-in returned values that are no numbers: check the input for such values.");
    out << options.output.string() << ": "
        << fixed(static_cast<double>(facts.writtenFrames) / plan.sampleRate, 2) << " s of stereo at "
        << source.sampleRate() << " Hz, Scene " << inQuotes(scene) << ", peak "
        << (peakDb ? fixed(*peakDb, 1) + " dB" : "none (silence)") << ", "
        << (loudness ? fixed(*loudness, 1) + " LUFS" : "below the loudness gate") << "; the plug-in took "
        << fixed(100 * facts.meanLoad, 1) << " % of real time.\n";
    if (peakDb && *peakDb > 0)
        out << "The peak lies above full scale, which the 32-bit float file holds; lower it with --gain "
               "before a player "
               "clips it.\n";
    if (!peakDb && source.frameCount() > 0)
        out << "The result is digital silence: if the input is not, check the data folder with kestrum data "
               "check "
            << dataFolder << ".\n";
}

void addRenderOptions(CLI::App& command, RenderOptions& options) {
    command
        .add_option("IN", options.input,
                    "Sound file of 1 to 16 channels; channel i is loudspeaker i of the layout")
        ->type_name("FILE")
        ->required();
    command.add_option("OUT", options.output, "Stereo WAV to write, 32-bit float, at the input's rate")
        ->type_name("FILE")
        ->required();

    const auto add = [&command](const char* group, const char* name, auto& target, const char* type,
                                const char* text) {
        return command.add_option(name, target, text)->type_name(type)->group(group);
    };
    add("Sound", "--layout", options.layout, "NAME",
        "Loudspeaker layout, such as \"5.1 ITU\"; default: by channel count");
    add("Sound", "--scene", options.scene, "NAME", "Room, such as \"Analytic Dry\"; default: \"Mix Room\"");
    add("Sound", "--ambience", options.ambience, "NUMBER", "0 to 100; default: 50");
    add("Sound", "--focus", options.focus, "NUMBER", "-100 to 100; default: 0");
    add("Sound", "--rotation", options.rotation, "DEGREES", "Head rotation, -180 to 180; default: 0");
    add("Sound", "--gain", options.gain, "DB", "Master gain, -96 to 24; default: 0");
    add("Sound", "--state", options.state, "FILE", "Start from this .vstpreset; other options go on top");
    add("Sound", "--save-state", options.saveState, "FILE",
        "Write the plug-in's state at the end to this .vstpreset");

    add("Feeding", "--block", options.block, "N", "Host block in samples; default: 512");
    add("Feeding", "--varying-blocks", options.varyingBlocks, "SEED", "Host blocks of 1 to --block samples");
    add("Feeding", "--automation", options.automation, "FILE", "CSV file with lines seconds,parameter,value");
    add("Feeding", "--settle", options.settleMilliseconds, "MS",
        "Pause in feeding after an automated layout or Scene; default: 250")
        ->check(CLI::Range(0.0, 60000.0).description(""));
    command.add_flag("--realtime", options.realtime, "Feed no faster than the clock")->group("Feeding");
    command
        .add_flag("--raw", options.raw,
                  "Keep the plug-in's exact stream: latency kept, whole blocks, no tail")
        ->group("Feeding");

    add("Files", "--plugin", options.plugin, "PATH", "Bundle to load; default: the one beside this program");
    add("Files", "--json", options.json, "FILE", "Write the facts of the run to this file");

    command.footer(
        "Examples:\n"
        "  kestrum render mix_5.1.wav headphones.wav\n"
        "  kestrum render mix.wav out.wav --layout \"7.1.4\" --scene \"Cinema\" --ambience 30\n"
        "  kestrum render mix.wav out.wav --automation moves.csv --json facts.json\n"
        "\n"
        "Layouts and Scenes go by the names in the host's parameter list or those in the plug-in's menus;\n"
        "an unknown name lists them. Automation calls the parameters layout, scene, ambience, focus,\n"
        "rotation and gain, or as the host does (\"Master Gain\").");
}

void addRenderCommands(CLI::App& program) {
    const auto options = std::make_shared<RenderOptions>();
    CLI::App* const render = program.add_subcommand(
        "render", "Renders a multichannel file for headphones through the VST3 bundle.");
    addRenderOptions(*render, *options);
    render->callback([options] { runRender(*options, std::cout); });

    const auto demo = std::make_shared<std::filesystem::path>();
    CLI::App* const demoCommand =
        program.add_subcommand("demo", "Writes a 5.1 ITU file that speaks the name of each channel in turn.");
    demoCommand->add_option("OUT", *demo, "WAV file to write, six channels")->type_name("FILE")->required();
    demoCommand->footer("Example:\n"
                        "  kestrum demo demo_5.1.wav && kestrum render demo_5.1.wav headphones.wav");
    demoCommand->callback([demo] {
        writeDemoInput(*demo);
        std::cout << demo->string()
                  << ": left, right, centre, low frequencies, left and right surround, one after another.\n";
    });
}

} // namespace orvane::kestrum::render
