// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string_view>

namespace orvane::kestrum::core {

/// The number under which a layout or a Scene is selected, stored and shown: the first four bytes of the
/// SHA-256 of the name's UTF-8 bytes, read little-endian. A changed name is a new identifier.
///
/// Thread  any that may take its time: tables hash their names once, when they are built.
std::uint32_t selectorId(std::string_view name) noexcept;

} // namespace orvane::kestrum::core
