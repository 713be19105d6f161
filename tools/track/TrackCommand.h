// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace CLI {
class App;
}

namespace orvane::kestrum::track {

/// Adds "track" to a program. Parsing a command line that names it runs it.
/// @throws TrackError out of the parse when the work is refused.
void addTrackCommand(CLI::App& program);

} // namespace orvane::kestrum::track
