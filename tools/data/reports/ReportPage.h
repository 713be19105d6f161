// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

namespace orvane::kestrum::tools {

/// One plot: its file, what it shows, and the gnuplot lines that draw it from tables in the same folder.
struct Plot {
    std::string name;
    std::string caption;
    std::string script;
    int width = 760; ///< Pixels.
    int height = 380;
};

/// A text file of numbers beside the plots, for gnuplot and for whoever wants the numbers.
class PlotTable {
public:
    /// @throws DataError when the folder cannot be written.
    PlotTable(const std::filesystem::path& folder, const std::string& name);
    void row(std::initializer_list<double> values) { row(std::span(values.begin(), values.size())); }
    void row(std::span<const double> values);
    void nextIndex() { stream << "\n\n"; } ///< Rows from here on are another block.

private:
    std::ofstream stream;
};

/// The colours of all plots, which readers of every kind of colour vision can tell apart.
/// Source  Okabe and Ito, Color Universal Design, 2008.
namespace colours {
inline constexpr std::string_view black = "#000000";
inline constexpr std::string_view orange = "#e69f00";
inline constexpr std::string_view sky = "#56b4e9";
inline constexpr std::string_view green = "#009e73";
inline constexpr std::string_view blue = "#0072b2";
inline constexpr std::string_view vermilion = "#d55e00";
inline constexpr std::string_view grey = "#999999";
} // namespace colours

/// @throws DataError when gnuplot is not installed: to be asked before long work whose end is a report.
void requireGnuplot();

/// Draws every plot as "<name>.svg" in the folder of its tables. The script stays there.
/// @throws DataError when gnuplot is missing or fails.
void drawPlots(std::span<const Plot> plots, const std::filesystem::path& folder);

/// The HTML element that shows a drawn plot, the picture inside it.
std::string figureElement(const Plot& plot, const std::filesystem::path& folder);

/// What every page begins with, up to the open body. Nothing outside the page is needed to show it.
std::string pageHead(const std::string& title);

/// Writes a whole page as "index.html".
/// @throws DataError when the folder cannot be written.
void writePage(const std::string& page, const std::filesystem::path& folder);

/// Text with the letters escaped that mean something to HTML.
std::string escaped(std::string_view text);

/// @return 99.5 as "99.5" and 20 as "20".
std::string shortest(double number);

/// A number with so many decimals, a minus as the sign that it is, and no minus on what rounds to 0.
std::string fixedText(double number, int decimals);

} // namespace orvane::kestrum::tools
