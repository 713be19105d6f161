// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace orvane::kestrum::identify {

/// Columns for a terminal, as wide as their widest cell, two blanks apart.
class TextTable {
public:
    enum class Side { left, right };
    struct Column {
        std::string heading;
        Side side = Side::left; ///< Numbers read best when their last digits stand below each other.
    };

    explicit TextTable(std::vector<Column> columns) : columns(std::move(columns)) {}

    /// A line above the rows that follow.
    void section(std::string title);
    /// @param cells one for each column.
    void row(std::vector<std::string> cells);
    void print(std::ostream& out) const;

private:
    struct Line {
        std::string title; ///< Empty for a row of cells.
        std::vector<std::string> cells;
    };

    std::vector<Column> columns;
    std::vector<Line> lines;
};

} // namespace orvane::kestrum::identify
