// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "track/Clock.h"
#include "track/Replay.h"
#include "track/Sample.h"

#include <optional>
#include <vector>

namespace orvane::kestrum::track {

/// Movements that the program itself plays: the demonstration, and a recorded file.
class PlayedInput {
public:
    /// @param demo whether to look around.
    /// @param movement a file's lines; empty for none.
    PlayedInput(bool demo, std::vector<ReplayLine> movement, Instant start)
        : demo(demo), movement(std::move(movement)), start(start), nextDemo(start) {}

    /// What is due by now, at most one sample of each: of a file's lines that were missed, the last.
    std::vector<Sample> samples(Instant now);

    /// When the next one is due; empty when there is none.
    std::optional<Instant> due() const;

    /// Whether there was a file and all of it has been played.
    bool finished() const { return !movement.empty() && played == movement.size(); }

private:
    bool demo;
    std::vector<ReplayLine> movement;
    Instant start;
    Instant nextDemo;
    std::size_t played = 0; ///< Lines.
};

} // namespace orvane::kestrum::track
