// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

namespace orvane::kestrum::check {

/// One line per piece of work. On a terminal the lines fill in place; elsewhere each is printed once, when it is done.
class ProgressTable {
public:
    ProgressTable(std::FILE* stream, std::vector<std::string> names);

    /// @param shares done, 0 to 1, one per name.
    void show(const std::vector<double>& shares);

private:
    void redraw(const std::vector<double>& shares);
    void report(const std::vector<double>& shares);

    std::FILE* stream;
    std::vector<std::string> names;
    std::vector<bool> told;
    std::size_t width = 0; ///< Of the longest name.
    bool terminal;
    bool drawn = false;
};

} // namespace orvane::kestrum::check
