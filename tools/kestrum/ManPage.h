// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "kestrum/CommandTree.h"

#include <string>

namespace orvane::kestrum::pages {

/// A page of section 1 for one command, made of what its --help says: description, arguments, options by group, and the
/// footer. A paragraph of the footer that begins with "Example" becomes the examples, line by line; the others are prose.
///
/// @param version such as "1.7.0". There is no date in the page: the same program gives the same page.
/// Source  the macros of groff's man(7).
std::string manPage(const Command& command, const std::vector<Command>& all, const std::string& version);

/// "kestrum-data-check.1"
std::string manPageFileName(const Command& command);

/// Text as roff takes it: backslashes and dashes escaped, no line taken for a macro.
std::string roff(const std::string& text);

} // namespace orvane::kestrum::pages
