// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "check/CheckOptions.h"

namespace CLI {
class App;
}

namespace orvane::kestrum::check {

/// Adds "check" to a program. Parsing a command line that names it runs it.
/// @throws CheckError and render::RenderError out of the parse when the work is refused.
void addCheckCommand(CLI::App& program);

/// Adds only the options of "check" to `command`, to be read into `options`, which outlives it.
void addCheckOptions(CLI::App& command, CheckOptions& options);

} // namespace orvane::kestrum::check
