// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "room/RoomRequest.h"

#include <iosfwd>

namespace CLI {
class App;
}

namespace orvane::kestrum::tools {

/// Adds "room", which puts a user's own room into a copy of a data folder. Parsing a command line that names it runs it.
/// @throws DataError out of the parse when the work is refused.
void addRoomCommand(CLI::App& program, std::ostream& out);
void addRoomCommand(CLI::App& program); ///< Speaks on the standard output.

/// Makes the new folder, and then the report where one is wanted.
/// @throws DataError with the remedy; nothing is left behind then, but for the new folder where its report alone failed.
void runRoom(const RoomRequest& request, std::ostream& out);

} // namespace orvane::kestrum::tools
