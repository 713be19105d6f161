// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CheckCommand.h"
#include "data/DataCommands.h"
#include "doctor/DoctorCommand.h"
#include "identify/IdentifyCommand.h"
#include "kestrum/PagesCommand.h"
#include "render/Names.h"
#include "render/RenderCommand.h"
#include "room/RoomCommand.h"
#include "track/TrackCommand.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include <sys/stat.h>

namespace {

std::vector<std::string> namesOf(const orvane::kestrum::render::ChoiceTable& table) {
    std::vector<std::string> names;
    for (const auto& choice : table.all())
        names.push_back(choice.name);
    return names;
}

/// Prints the names by which "kestrum data use" knows the sets of the machine.
constexpr const char* listSets =
    R"bash(find "${KESTRUM_DATA_ROOT:-/opt/Tenmarsh/OrvaneVSTPlugin}/sets" \
        "${KESTRUM_PACKAGED_SETS:-/usr/share/orvane-kestrum/sets}" \
        -mindepth 1 -maxdepth 1 -type d ! -name '.*' -printf '%f\n' 2> /dev/null |
        sed -E 's/-[0-9a-f]{8}(-[0-9]+)?$//' | sort -u)bash";

/// What the shell completes.
orvane::kestrum::pages::Choices choices() {
    const auto layouts = namesOf(orvane::kestrum::render::layoutChoices());
    return {{{"--layout", layouts},
             {"LAYOUT", layouts},
             {"--scene", namesOf(orvane::kestrum::render::sceneChoices())}},
            {{"kestrum data use NAME", listSets}}};
}

int run(int argumentCount, char** arguments) {
    CLI::App program("Companion of the plug-in Orvane KESTRUM: renders files through it and makes its data.",
                     "kestrum");
    program.set_version_flag("--version", "kestrum " KESTRUM_VERSION);
    program.require_subcommand(1);
    try {
        orvane::kestrum::render::addRenderCommands(program);
        orvane::kestrum::identify::addIdentifyCommands(program);
        orvane::kestrum::tools::addDataCommands(program);
        orvane::kestrum::check::addCheckCommand(program);
        orvane::kestrum::doctor::addDoctorCommand(program);
        orvane::kestrum::track::addTrackCommand(program);
        orvane::kestrum::tools::addRoomCommand(program);
        orvane::kestrum::pages::addPagesCommand(program, choices(), KESTRUM_VERSION);
        program.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        return program.exit(error);
    }
    return 0;
}

} // namespace

int main(int argumentCount, char** arguments) {
    umask(umask(0) |
          S_IWOTH); // however lax the session is: nothing that is made here may be written by everybody
    try {
        return run(argumentCount, arguments);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kestrum: %s\n", error.what());
    } catch (...) {
        std::fputs("kestrum: stopped for an unknown reason.\n", stderr);
    }
    return 1;
}
