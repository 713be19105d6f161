// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/DataCommands.h"
#include "data/SetStore.h"

#include <iosfwd>

namespace orvane::kestrum::tools {

/// Makes a complete set among those of the machine, ready for SetStore::use():
///
///     SOFA file -> head -> rooms for it -> headphones folded into both -> check -> name
///
/// All of it happens in a staged folder, so nothing that there is changes before the set is whole. A set that is there
/// already, of the same input and methods and sound, is left as it is; so are its head and rooms where only the
/// headphones are new. What other makers put into the latest set of this name goes along.
/// @param request with a name.
/// @throws DataError when the input cannot serve or the store cannot be written.
void runSet(const HrirRequest& request, const SetStore& store, std::ostream& out);

} // namespace orvane::kestrum::tools
