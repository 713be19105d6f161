// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

namespace orvane::kestrum::check {

/// Gives every page of an Ogg stream this serial number, and a checksum that fits. The sound library draws the number by
/// chance; without chance the same mix makes the same page, byte for byte.
/// @param stream whole pages of one stream; what is none is left as it is.
/// Source  RFC 3533, section 6.
void setOggSerial(std::string& stream, std::uint32_t serial);

} // namespace orvane::kestrum::check
