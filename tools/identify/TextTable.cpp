// SPDX-License-Identifier: GPL-3.0-or-later
#include "identify/TextTable.h"

#include <algorithm>
#include <utility>

namespace orvane::kestrum::identify {

namespace {

/// Letters of a UTF-8 text: the bytes that do not continue one.
std::size_t widthOf(const std::string& text) {
    return static_cast<std::size_t>(std::ranges::count_if(
        text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

std::string lineOf(const std::vector<std::string>& cells, const std::vector<TextTable::Column>& columns,
                   const std::vector<std::size_t>& widths) {
    std::string line;
    for (std::size_t column = 0; column < cells.size(); ++column) {
        const std::string blanks(widths[column] - widthOf(cells[column]), ' ');
        line += column > 0 ? "  " : "";
        line +=
            columns[column].side == TextTable::Side::left ? cells[column] + blanks : blanks + cells[column];
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

} // namespace

void TextTable::section(std::string title) { lines.push_back({std::move(title), {}}); }

void TextTable::row(std::vector<std::string> cells) { lines.push_back({{}, std::move(cells)}); }

void TextTable::print(std::ostream& out) const {
    std::vector<std::string> headings;
    std::vector<std::size_t> widths;
    for (const Column& column : columns) {
        headings.push_back(column.heading);
        widths.push_back(widthOf(column.heading));
    }
    for (const Line& line : lines)
        for (std::size_t column = 0; column < line.cells.size(); ++column)
            widths[column] = std::max(widths[column], widthOf(line.cells[column]));
    out << lineOf(headings, columns, widths) << "\n";
    for (const Line& line : lines)
        out << (line.title.empty() ? lineOf(line.cells, columns, widths) : "\n" + line.title) << "\n";
}

} // namespace orvane::kestrum::identify
