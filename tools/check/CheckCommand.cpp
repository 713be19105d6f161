// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CheckCommand.h"

#include "check/CheckRun.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>

namespace orvane::kestrum::check {

void addCheckOptions(CLI::App& command, CheckOptions& options) {
    command
        .add_option("MIX", options.mix,
                    "Sound file with a channel for each loudspeaker of the layout, at most ten minutes")
        ->type_name("FILE")
        ->required();
    command.add_option("OUTDIR", options.folder, "Folder for the page and the sound files")
        ->type_name("DIR")
        ->required();
    const auto add = [&command](const char* name, auto& target, const char* type, const char* text) {
        return command.add_option(name, target, text)->type_name(type);
    };
    add("--layout", options.layout, "NAME",
        "Loudspeaker layout, such as \"7.1.4\"; needed where several have this many channels");
    add("--loudness", options.loudness, "LUFS", "Integrated loudness of all copies, -40 to -10; default: -23")
        ->check(CLI::Range(-40.0, -10.0).description(""));
    add("--jobs", options.processes, "N", "Scenes rendered at once; default: as many as cores")
        ->check(CLI::Range(1U, 1024U).description(""));
    add("--plugin", options.plugin, "PATH", "Bundle to load; default: the one beside this program");
    command.add_flag("--replace", options.replace,
                     "Write over the check of another mix, plug-in or data in OUTDIR");
    command.add_flag("--list-jobs", options.listJobs,
                     "Print the command of every Scene still to be rendered, and render none");
    command.footer(
        "Examples:\n"
        "  kestrum check mix_7.1.4.wav check --layout 7.1.4\n"
        "  kestrum check mix.wav check --layout \"5.1 ITU\" --loudness -18\n"
        "  kestrum check mix.wav check --layout 7.1.4 --list-jobs | parallel\n"
        "\n"
        "Then open check/index.html in a browser. Scenes that lie in OUTDIR already, of the same mix and\n"
        "layout, are not rendered again: after the listed jobs the same command without --list-jobs makes\n"
        "the page. To have all rendered anew, delete OUTDIR/rendered.");
}

void addCheckCommand(CLI::App& program) {
    const auto options = std::make_shared<CheckOptions>();
    CLI::App* const command = program.add_subcommand(
        "check", "Renders a mix through all sixteen Scenes and makes a page to compare them by ear.");
    addCheckOptions(*command, *options);
    command->callback([options] { runCheck(*options, std::cout); });
}

} // namespace orvane::kestrum::check
