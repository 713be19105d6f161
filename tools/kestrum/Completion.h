// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <CLI/App.hpp>

#include <map>
#include <string>
#include <vector>

namespace orvane::kestrum::pages {

/// What options and arguments take whose values are names.
struct Choices {
    /// By the option's or argument's name in any command: "--layout" or "LAYOUT" and the layouts.
    std::map<std::string, std::vector<std::string>> names;

    /// By command and name, "kestrum data use NAME": a shell command that prints what there is, one a line, at the time
    /// when somebody asks.
    std::map<std::string, std::string> listings;
};

/// A script by which bash completes the program's commands, options and values. Values come from the choices, else from the
/// option's or argument's type: FILE and PATH are files, DIR is a folder.
std::string bashCompletion(const CLI::App& program, const Choices& choices);

/// Text as one word of a shell.
std::string quoted(const std::string& text);

} // namespace orvane::kestrum::pages
