// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/SourceChoice.h"

#include "track/Dialects.h"

#include <algorithm>

namespace orvane::kestrum::track {

std::optional<std::size_t> SourceChoice::rank(const Source& source) const {
    const auto input = std::ranges::find(order, source.input);
    if (input == order.end())
        return std::nullopt;
    const auto rows = dialects();
    const auto row = std::ranges::find(rows, source.family, &Dialect::family);
    return static_cast<std::size_t>(input - order.begin()) * (rows.size() + 1) +
           static_cast<std::size_t>(row - rows.begin());
}

bool SourceChoice::admits(const Source& source, Instant now) {
    const auto own = rank(source);
    if (!own)
        return false;
    if (chosen && source != *chosen && now - lastHeard <= hold && *own >= *rank(*chosen))
        return false;
    chosen = source;
    lastHeard = now;
    return true;
}

} // namespace orvane::kestrum::track
