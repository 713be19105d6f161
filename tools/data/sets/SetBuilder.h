// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/DataCommands.h"
#include "data/sets/SetStore.h"

#include <iosfwd>

namespace orvane::kestrum::tools {

/// Makes a complete set among those of the machine, ready for SetStore::use():
///
///     SOFA file -> head -> rooms for it -> headphones folded into both -> check -> name
///
/// All of it happens in a staged folder, so nothing that there is changes before the set is whole. A set that is there
/// already, of the same input and methods and sound, is left as it is and is the latest of its name again; head and rooms
/// that are there are copied where only the headphones are new. What other makers put into the latest set of this name
/// goes along. Older ones of the name are removed as SetStore::removeOlder() says, each with a sentence.
/// @param request with a name.
/// @throws DataError when the input cannot serve, the name belongs to a set with a room of a user's own, or the store
///         cannot be written; when a report is wanted and cannot be made, at once if gnuplot is missing.
void runSet(const HrirRequest& request, const SetStore& store, std::ostream& out);

} // namespace orvane::kestrum::tools
