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

/// Writes a file beside its place and renames it, so that a reader never meets half a file. After a failure nothing of it
/// is left, and what was there before is as it was.
/// @throws DataError when the folder cannot be written.
void writeWhole(const Bytes& bytes, const std::filesystem::path& target);

/// Copies a file in the same way.
/// @throws DataError when it cannot be read or the folder cannot be written.
void copyWhole(const std::filesystem::path& source, const std::filesystem::path& target);

} // namespace orvane::kestrum::tools
