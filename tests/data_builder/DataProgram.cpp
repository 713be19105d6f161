// SPDX-License-Identifier: GPL-3.0-or-later
// The data commands as a program of their own, so that scripts can be tested without the plug-in's host.
#include "data/DataCommands.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>

int main(int argumentCount, char** arguments) {
    CLI::App program("The data commands alone.", "kestrum");
    program.require_subcommand(1);
    try {
        orvane::kestrum::tools::addDataCommands(program);
        program.parse(argumentCount, arguments);
        return 0;
    } catch (const CLI::ParseError& error) {
        return program.exit(error);
    } catch (const std::exception& error) {
        std::cerr << "kestrum: " << error.what() << "\n";
        return 1;
    }
}
