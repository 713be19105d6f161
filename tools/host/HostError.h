// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <stdexcept>

namespace orvane::kestrum::host {

/// What a module, an instance or a preset file could not do: one plain sentence that names the thing
/// concerned.
class HostError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace orvane::kestrum::host
