// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "kestrum/Completion.h"

#include <CLI/App.hpp>

#include <filesystem>

namespace orvane::kestrum::pages {

/// Writes man1/*.1, one page per command, and completions/kestrum for bash below a folder.
/// @throws std::runtime_error when they cannot be written.
void writePages(const CLI::App& program, const Choices& choices, const std::string& version,
                const std::filesystem::path& folder);

/// Adds "write-pages", which --help does not show: it is for building packages.
void addPagesCommand(CLI::App& program, Choices choices, std::string version);

} // namespace orvane::kestrum::pages
