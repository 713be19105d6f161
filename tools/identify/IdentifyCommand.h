// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "identify/EspeakSpeech.h"
#include "render/Recording.h"

#include <filesystem>
#include <optional>
#include <ostream>
#include <string>

namespace CLI {
class App;
}

namespace orvane::kestrum::identify {

/// What "kestrum identify" was asked for.
struct IdentifyRequest {
    std::string layout;
    std::filesystem::path output;
    unsigned sampleRate = 48000;
    bool replace = false;  ///< Whether files that are there already may be written over.
    bool rendered = false; ///< Also the headphone version, beside the output.
    std::optional<std::string> scene;
    std::optional<std::filesystem::path> plugin;
    std::filesystem::path recordings = render::spokenNamesFolder;
    std::string speechProgram = "espeak-ng";
};

/// Adds "identify", "layouts" and "scenes" to a program. Parsing a command line that names one of them runs it.
/// @throws render::RenderError and host::HostError out of the parse when the work is refused.
void addIdentifyCommands(CLI::App& program, std::ostream& out);
void addIdentifyCommands(CLI::App& program); ///< Speaks on the standard output.

/// Writes the file, says on `out` when which channel is heard, and renders the file when that is wanted.
/// Everything that can be looked at beforehand is, so that a refusal leaves no file.
/// @throws render::RenderError and host::HostError with the remedy.
void runIdentify(const IdentifyRequest& request, std::ostream& out);

/// Where the headphone version of a file goes: "bus-headphones.wav" beside "bus.wav".
std::filesystem::path headphoneVersionOf(const std::filesystem::path& output);

} // namespace orvane::kestrum::identify
