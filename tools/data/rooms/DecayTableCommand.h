// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <iosfwd>

namespace CLI {
class App;
}

namespace orvane::kestrum::tools {

/// Adds "decay-table", which writes the curves by which the plug-in shortens its reverb.
/// @throws DataError out of the parse when the file cannot be written.
void addDecayTableCommand(CLI::App& data, std::ostream& out);

} // namespace orvane::kestrum::tools
