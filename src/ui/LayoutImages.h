// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace orvane::kestrum {

/// A compressed picture that is compiled in.
struct LayoutImage {
    const char* data;
    int size; ///< Bytes.
};

/// The diagram of a speaker layout.
///
/// @throws std::out_of_range when no layout has this identifier.
LayoutImage layoutImage(std::uint32_t id);

} // namespace orvane::kestrum
