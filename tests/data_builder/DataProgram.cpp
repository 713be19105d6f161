// SPDX-License-Identifier: GPL-3.0-or-later
// The data commands as a program of their own, so that scripts can be tested without the plug-in's host.
#include "data/DataCommands.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>

namespace {

int run(int argumentCount, char** arguments) {
    CLI::App program("The data commands alone.", "kestrum");
    program.require_subcommand(1);
    orvane::kestrum::tools::addDataCommands(program);
    try {
        program.parse(argumentCount, arguments);
        return 0;
    } catch (const CLI::ParseError& error) {
        return program.exit(error);
    }
}

} // namespace

int main(int argumentCount, char** arguments) {
    try {
        return run(argumentCount, arguments);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kestrum: %s\n", error.what());
        return 1;
    }
}
