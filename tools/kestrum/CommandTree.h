// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace orvane::kestrum::pages {

/// One command that --help can be asked of: the program itself, "kestrum data", "kestrum data check".
struct Command {
    std::vector<std::string> words; ///< From the program's name on.
    const CLI::App* app = nullptr;  ///< Borrowed from the program.

    std::string spelled(const std::string& between) const;
};

/// The program and everything below it that --help shows, parents before children.
std::vector<Command> commandsOf(const CLI::App& program);

/// The subcommands that --help shows.
std::vector<const CLI::App*> shownSubcommands(const CLI::App& command);

/// The options, or the positional arguments, that --help shows.
std::vector<const CLI::Option*> shownOptions(const CLI::App& command);
std::vector<const CLI::Option*> shownPositionals(const CLI::App& command);

/// As it is typed, long form first: "--help", "-h".
std::vector<std::string> spellingsOf(const CLI::Option& option);

} // namespace orvane::kestrum::pages
