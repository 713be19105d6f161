// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/headphones/HeadphoneCurve.h"
#include "data/sets/SetStore.h"

#include <filesystem>
#include <optional>

namespace orvane::kestrum::tools {

/// The head that a room is made for and levelled against: without headphones, so that their correction changes its colour and
/// nothing else.
struct PlainHead {
    std::filesystem::path folder; ///< Holds the head; only read.
    std::optional<Headphones>
        headphones; ///< Folded into the data folder, and to be folded into its new room.
};

/// A data folder's own head, or, where it has headphones folded in, the same head without them in another set.
/// @throws DataError with the remedy where no set of the store has that, or the correction's own file is not sound.
PlainHead plainHeadOf(const std::filesystem::path& data, const SetStore& store);

} // namespace orvane::kestrum::tools
