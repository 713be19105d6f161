// SPDX-License-Identifier: GPL-3.0-or-later
#include "kestrum/PagesCommand.h"

#include "kestrum/CommandTree.h"
#include "kestrum/ManPage.h"

#include <CLI/CLI.hpp>

#include <fstream>
#include <memory>
#include <stdexcept>
#include <system_error>

namespace orvane::kestrum::pages {

namespace {

void write(const std::filesystem::path& path, const std::string& text) {
    std::error_code failure; // the stream tells it, too
    std::filesystem::create_directories(path.parent_path(), failure);
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.flush();
    if (!file)
        throw std::runtime_error(
            "\"" + path.string() +
            "\" cannot be written: give a folder that you may write to, on a disk with space.");
}

} // namespace

void writePages(const CLI::App& program, const Choices& choices, const std::string& version,
                const std::filesystem::path& folder) {
    const auto commands = commandsOf(program);
    for (const Command& command : commands)
        write(folder / "man1" / manPageFileName(command), manPage(command, commands, version));
    write(folder / "completions" / program.get_name(), bashCompletion(program, choices));
}

void addPagesCommand(CLI::App& program, Choices choices, std::string version) {
    const auto folder = std::make_shared<std::filesystem::path>();
    CLI::App* const command =
        program.add_subcommand("write-pages", "Writes man pages and shell completion.")->group("");
    command->add_option("DIR", *folder, "Folder for them; made when missing")->type_name("")->required();
    command->callback([&program, choices = std::move(choices), version = std::move(version), folder] {
        writePages(program, choices, version, *folder);
    });
}

} // namespace orvane::kestrum::pages
