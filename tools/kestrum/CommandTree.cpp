// SPDX-License-Identifier: GPL-3.0-or-later
#include "kestrum/CommandTree.h"

#include <CLI/CLI.hpp>

namespace orvane::kestrum::pages {

namespace {

void collect(const CLI::App& app, std::vector<std::string> words, std::vector<Command>& commands) {
    words.push_back(app.get_name());
    commands.push_back({words, &app});
    for (const CLI::App* const below : shownSubcommands(app))
        collect(*below, words, commands);
}

} // namespace

std::string Command::spelled(const std::string& between) const {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : between) + word;
    return text;
}

std::vector<Command> commandsOf(const CLI::App& program) {
    std::vector<Command> commands;
    collect(program, {}, commands);
    return commands;
}

std::vector<const CLI::App*> shownSubcommands(const CLI::App& command) {
    return command.get_subcommands(
        [](const CLI::App* below) { return !below->get_name().empty() && !below->get_group().empty(); });
}

std::vector<const CLI::Option*> shownOptions(const CLI::App& command) {
    return command.get_options(
        [](const CLI::Option* option) { return !option->get_positional() && !option->get_group().empty(); });
}

std::vector<const CLI::Option*> shownPositionals(const CLI::App& command) {
    return command.get_options(
        [](const CLI::Option* option) { return option->get_positional() && !option->get_group().empty(); });
}

std::vector<std::string> spellingsOf(const CLI::Option& option) {
    std::vector<std::string> spellings;
    for (const std::string& name : option.get_lnames())
        spellings.push_back("--" + name);
    for (const std::string& name : option.get_snames())
        spellings.push_back("-" + name);
    return spellings;
}

} // namespace orvane::kestrum::pages
