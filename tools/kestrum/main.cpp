// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/RenderCommand.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>

int main(int argumentCount, char** arguments) {
    CLI::App program("Companion of the plug-in Orvane KESTRUM: renders files through it and makes its data.",
                     "kestrum");
    program.set_version_flag("--version", "kestrum " KESTRUM_VERSION);
    program.require_subcommand(1);
    try {
        orvane::kestrum::render::addRenderCommands(program);
        program.parse(argumentCount, arguments);
        return 0;
    } catch (const CLI::ParseError& error) {
        return program.exit(error);
    } catch (const std::exception& error) {
        std::cerr << "kestrum: " << error.what() << "\n";
        return 1;
    }
}
