// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace orvane::kestrum::tools {

using Bytes = std::vector<std::uint8_t>;

/// Appends a number, lowest byte first.
void put16(Bytes& bytes, std::uint16_t value);
void put32(Bytes& bytes, std::uint32_t value);

/// Writes a file beside its place and renames it, so that a reader never meets half a file.
/// @throws DataError when the folder cannot be written.
void writeWhole(const Bytes& bytes, const std::filesystem::path& target);

} // namespace orvane::kestrum::tools
