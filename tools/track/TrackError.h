// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <stdexcept>

namespace orvane::kestrum::track {

/// Why tracking was refused: one plain sentence with the remedy.
class TrackError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace orvane::kestrum::track
