// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace orvane::kestrum::check {

/// Bytes as text on one line, padded. Source  RFC 4648, section 4.
std::string base64(std::string_view bytes);

} // namespace orvane::kestrum::check
