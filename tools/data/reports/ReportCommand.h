// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <iosfwd>

namespace CLI {
class App;
}

namespace orvane::kestrum::tools {

/// Adds "report", which shows what a data folder sounds like on one page.
void addReportCommand(CLI::App& data, std::ostream& out);

} // namespace orvane::kestrum::tools
