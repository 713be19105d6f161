// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "track/Clock.h"
#include "track/Sample.h"

#include <optional>
#include <vector>

namespace orvane::kestrum::track {

/// Decides which of several senders drives the head: the one of the best rank that is not silent.
///
/// Ranks go by the order of the inputs, then by that of the table of dialects, since some senders speak several at
/// once. Among equals, whoever came first stays until it falls silent.
class SourceChoice {
public:
    /// @param order best first; inputs that it leaves out are never chosen.
    /// @param hold how long a source may be silent before another takes its place.
    SourceChoice(std::vector<Input> order, Clock::duration hold) : order(std::move(order)), hold(hold) {}

    /// @return whether a sample of this source counts at this moment. Chooses the source when it does.
    bool admits(const Source& source, Instant now);

    /// The one that drives; empty before the first.
    const std::optional<Source>& current() const { return chosen; }

private:
    /// Smaller is better; empty for a source that is never chosen.
    std::optional<std::size_t> rank(const Source& source) const;

    std::vector<Input> order;
    Clock::duration hold;
    std::optional<Source> chosen;
    Instant lastHeard{};
};

} // namespace orvane::kestrum::track
