// SPDX-License-Identifier: GPL-3.0-or-later
#include "identify/IdentifyCommand.h"

#include "identify/ChannelFile.h"
#include "identify/Listing.h"
#include "parameters/core/GainCompensation.h"
#include "parameters/core/SpeakerPropertiesConverter.h"
#include "render/DataFolder.h"
#include "render/Names.h"
#include "render/RenderCommand.h"
#include "render/RenderError.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>
#include <vector>

namespace orvane::kestrum::identify {

namespace {

/// The plug-in turns a layout down by what all its channels add up to; here one sounds at a time.
std::string gainForOneAtATime(const core::LayoutRow& layout) {
    std::vector<core::ISupportedLayouts::Properties> properties;
    core::SpeakerPropertiesConverter(properties).add(layout);
    std::ostringstream decibels;
    decibels << std::fixed << std::setprecision(1) << -core::gainCompensationDb(properties.front());
    return decibels.str();
}

std::string clockOf(std::size_t seconds) {
    const std::string rest = std::to_string(seconds % 60);
    return std::to_string(seconds / 60) + (rest.size() < 2 ? ":0" : ":") + rest;
}

void printTurns(const IdentifyRequest& request, const core::LayoutRow& layout, const Turns& turns,
                std::ostream& out) {
    const std::size_t turnSeconds = turns.turnFrames / request.sampleRate;
    out << request.output.string() << ": \"" << layout.name << "\", "
        << clockOf(turnSeconds * turns.channels.size()) << " at " << request.sampleRate << " Hz.\n";
    for (std::size_t index = 0; index < turns.channels.size(); ++index) {
        const channels::Channel& channel = turns.channels[index];
        out << std::setw(5) << clockOf(index * turnSeconds) << "  channel " << std::left << std::setw(4)
            << index + 1 << std::setw(5) << channel.brief << std::right
            << (channel.speaker.lowFrequency ? "a low tone" : channel.spoken) << "\n";
    }
}

bool endsInWav(const std::filesystem::path& path) {
    std::string extension = path.extension().string();
    std::ranges::transform(extension, extension.begin(),
                           [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return extension == ".wav";
}

/// @throws render::RenderError when a file would be of another kind than its name says, or would take another's place.
void requireNewFiles(const IdentifyRequest& request) {
    if (!endsInWav(request.output))
        throw render::RenderError("The output \"" + request.output.string() +
                                  "\" is written as WAV: give it a name that ends in .wav.");
    std::vector<std::filesystem::path> files{request.output};
    if (request.rendered)
        files.push_back(headphoneVersionOf(request.output));
    std::error_code ignored;
    for (const auto& file : files)
        if (!request.replace && std::filesystem::exists(file, ignored))
            throw render::RenderError("The file \"" + file.string() +
                                      "\" is there already: name another, or write over it with --replace.");
}

/// @throws render::RenderError when the headphone version could not be made.
void requireRendering(const IdentifyRequest& request) {
    if (request.scene)
        render::sceneChoices().find(*request.scene);
    render::chooseBundle(request.plugin);
    render::requireRateAndData(request.sampleRate);
}

void addIdentify(CLI::App& program, std::ostream& out) {
    const auto request = std::make_shared<IdentifyRequest>();
    CLI::App* const command = program.add_subcommand(
        "identify", "Writes a file in which every channel of a layout says its own name in turn.");
    command->add_option("LAYOUT", request->layout, "Loudspeaker layout, such as \"5.1 ITU\"")
        ->type_name("NAME")
        ->required();
    command->add_option("OUT", request->output, "WAV file to write, one channel per loudspeaker")
        ->type_name("FILE")
        ->required();
    command->add_flag("--replace", request->replace, "Write over files of these names");
    command->add_option("--rate", request->sampleRate, "Sample rate of the file; default: 48000")
        ->type_name("HZ")
        ->check(CLI::IsMember(render::servedRates()).description(""));
    CLI::Option* const rendered = command->add_flag(
        "--rendered", request->rendered, "Also write OUT-headphones.wav, the file through the plug-in");
    command->add_option("--scene", request->scene, "Room of the headphone version; default: \"Mix Room\"")
        ->type_name("NAME")
        ->needs(rendered);
    command->add_option("--plugin", request->plugin, "Bundle to load; default: the one beside this program")
        ->type_name("PATH")
        ->needs(rendered);
    command->footer("Examples:\n"
                    "  kestrum identify \"5.1 ITU\" bus.wav\n"
                    "  kestrum identify 7.1.4 bus.wav --rendered --scene \"Analytic Dry\"\n"
                    "\n"
                    "\"kestrum layouts\" lists the layouts; the names in the plug-in's menu are known, too.");
    command->callback([request, &out] { runIdentify(*request, out); });
}

void addLayouts(CLI::App& program, std::ostream& out) {
    struct Request {
        std::string layout;
        bool json = false;
    };
    const auto request = std::make_shared<Request>();
    CLI::App* const command =
        program.add_subcommand("layouts", "Lists the loudspeaker layouts, or the channels of one.");
    command->add_option("LAYOUT", request->layout, "Show this layout, a line per channel")->type_name("NAME");
    command->add_flag("--json", request->json, "Print JSON instead of a table");
    command->footer("Examples:\n"
                    "  kestrum layouts\n"
                    "  kestrum layouts 7.1.4\n"
                    "  kestrum layouts --json | jq -r '.[] | select(.channelCount == 8) | .name'");
    command->callback([request, &out] {
        if (request->layout.empty())
            return request->json ? printLayoutsJson(out) : printLayouts(out);
        const core::LayoutRow& layout = layoutNamed(request->layout);
        request->json ? printLayoutJson(layout, out) : printLayout(layout, out);
    });
}

void addScenes(CLI::App& program, std::ostream& out) {
    const auto json = std::make_shared<bool>();
    CLI::App* const command = program.add_subcommand("scenes", "Lists the Scenes and what each sets.");
    command->add_flag("--json", *json, "Print JSON instead of a table");
    command->footer("Examples:\n"
                    "  kestrum scenes\n"
                    "  kestrum scenes --json | jq -r '.[].name'");
    command->callback([json, &out] { *json ? printScenesJson(out) : printScenes(out); });
}

} // namespace

std::filesystem::path headphoneVersionOf(const std::filesystem::path& output) {
    return output.parent_path() / (output.stem().string() + "-headphones.wav");
}

void runIdentify(const IdentifyRequest& request, std::ostream& out) {
    const core::LayoutRow& layout = layoutNamed(request.layout);
    requireNewFiles(request);
    if (request.rendered)
        requireRendering(request);
    EspeakSpeech speech(request.speechProgram);
    const Voices voices(request.recordings, speech, request.sampleRate);
    printTurns(request, layout, writeChannelFile(request.output, layout, voices, request.sampleRate), out);
    if (!request.rendered)
        return;
    render::RenderOptions options;
    options.input = request.output;
    options.output = headphoneVersionOf(request.output);
    options.layout = layout.name;
    options.scene = request.scene;
    options.gain = gainForOneAtATime(layout);
    options.plugin = request.plugin;
    render::runRender(options, out);
}

void addIdentifyCommands(CLI::App& program, std::ostream& out) {
    addIdentify(program, out);
    addLayouts(program, out);
    addScenes(program, out);
}

void addIdentifyCommands(CLI::App& program) { addIdentifyCommands(program, std::cout); }

} // namespace orvane::kestrum::identify
