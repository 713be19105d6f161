// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace orvane::kestrum::check {

/// The bytes of a file that is compiled in: the page's own, and its fonts. Empty when there is none of that name.
std::string_view pageFile(std::string_view name);

} // namespace orvane::kestrum::check
