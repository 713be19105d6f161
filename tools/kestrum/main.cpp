// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CheckCommand.h"
#include "data/DataCommands.h"
#include "identify/IdentifyCommand.h"
#include "render/RenderCommand.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>

namespace {

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
        program.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        return program.exit(error);
    }
    return 0;
}

} // namespace

int main(int argumentCount, char** arguments) {
    try {
        return run(argumentCount, arguments);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kestrum: %s\n", error.what());
    } catch (...) {
        std::fputs("kestrum: stopped for an unknown reason.\n", stderr);
    }
    return 1;
}
