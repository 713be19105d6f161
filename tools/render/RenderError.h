// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <stdexcept>

namespace orvane::kestrum::render {

/// Why a rendering was refused: one plain sentence with the remedy.
class RenderError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace orvane::kestrum::render
