// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/sets/SetStore.h"

#include <iosfwd>
#include <string>

namespace CLI {
class App;
}

namespace orvane::kestrum::tools {

/// Adds "use" and "list", which switch and show the sets of the machine.
void addSetCommands(CLI::App& data, std::ostream& out);

/// Lets the plug-in read another set.
/// @throws DataError when there is no such set, it is not sound, or the link cannot be replaced.
void runUse(const std::string& name, const SetStore& store, std::ostream& out);

/// Tells every set: which is used, where from, for which headphones and rates, and whether it is sound.
void runList(const SetStore& store, std::ostream& out);

} // namespace orvane::kestrum::tools
