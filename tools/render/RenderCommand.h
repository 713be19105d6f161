// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/RenderOptions.h"

#include <filesystem>
#include <optional>
#include <ostream>

namespace CLI {
class App;
}

namespace orvane::kestrum::render {

/// Adds "render" and "demo" to a program. Parsing a command line that names one of them runs it.
/// @throws RenderError and host::HostError out of the parse when the work is refused.
void addRenderCommands(CLI::App& program);

/// Adds only the options of "render" to `command`, to be read into `options`, which outlives it.
void addRenderOptions(CLI::App& command, RenderOptions& options);

/// Renders one file through the bundle, and says on `out` what was chosen and made.
/// @throws RenderError and host::HostError with the remedy.
void runRender(const RenderOptions& options, std::ostream& out);

/// The bundle that is used when none is named: the one beside the running program, else the installed one.
/// @throws RenderError when there is none.
std::filesystem::path findBundle(const std::filesystem::path& programFolder);

/// @return the bundle that `--plugin` names, else what findBundle() finds.
/// @throws RenderError when there is none.
std::filesystem::path chooseBundle(const std::optional<std::filesystem::path>& named);

/// Names of files go into facts, which are JSON and hold no other text.
/// @throws RenderError when a path is not UTF-8.
void requireUtf8(const std::filesystem::path& path);

} // namespace orvane::kestrum::render
