// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <CLI/App.hpp>

#include <map>
#include <string>
#include <vector>

namespace orvane::kestrum::pages {

/// What an option or argument of a name takes: "--layout" or "LAYOUT" and the layouts.
using Choices = std::map<std::string, std::vector<std::string>>;

/// A script by which bash completes the program's commands, options and values. Values come from the choices, by the option's
/// or argument's name, else from its type: FILE and PATH are files, DIR is a folder.
std::string bashCompletion(const CLI::App& program, const Choices& choices);

/// Text as one word of a shell.
std::string quoted(const std::string& text);

} // namespace orvane::kestrum::pages
