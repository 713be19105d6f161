// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/reports/ReportPage.h"

#include "data/DataError.h"

#include <nettle/base64.h>
#include <sys/wait.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iomanip>
#include <iterator>
#include <sstream>

namespace orvane::kestrum::tools {

namespace {

[[noreturn]] void refuseWithoutGnuplot() {
    throw DataError("The plots cannot be drawn without gnuplot: install the package gnuplot-nox.");
}

[[noreturn]] void refuseFolder(const std::filesystem::path& folder) {
    throw DataError("The report cannot be written to \"" + folder.string() +
                    "\": give a folder that you may write to.");
}

std::string base64(const std::string& bytes) {
    std::string text(BASE64_ENCODE_RAW_LENGTH(bytes.size()), '\0');
    base64_encode_raw(text.data(), bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
    return text;
}

} // namespace

PlotTable::PlotTable(const std::filesystem::path& folder, const std::string& name) : stream(folder / name) {
    if (!stream)
        refuseFolder(folder);
    stream << std::setprecision(6);
}

void PlotTable::row(std::span<const double> values) {
    for (const double value : values)
        stream << value << " ";
    stream << "\n";
}

void requireGnuplot() {
    if (std::system("command -v gnuplot > /dev/null") != 0)
        refuseWithoutGnuplot();
}

void drawPlots(std::span<const Plot> plots, const std::filesystem::path& folder) {
    {
        std::ofstream script(folder / "plots.gnuplot");
        for (const Plot& plot : plots)
            script << "reset\nset terminal svg size " << plot.width << "," << plot.height
                   << " dynamic background rgb 'white' font 'sans-serif,11'\n"
                   << "set output '" << plot.name << ".svg'\n"
                   << plot.script << "\nunset output\n";
        if (!script)
            refuseFolder(folder);
    }
    std::string quoted;
    for (const char letter : folder.string())
        quoted += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
    // The shell is needed for the working folder only; the folder's name is quoted whole.
    const int result = std::system(("cd '" + quoted + "' && gnuplot plots.gnuplot").c_str());
    constexpr int commandNotFound = 127; // of the POSIX shell
    if (WIFEXITED(result) && WEXITSTATUS(result) == commandNotFound)
        refuseWithoutGnuplot();
    if (result != 0)
        throw DataError("The plots cannot be drawn: gnuplot failed on \"" +
                        (folder / "plots.gnuplot").string() +
                        "\". What it says above names the line; the tables that it draws lie beside it.");
}

std::string figureElement(const Plot& plot, const std::filesystem::path& folder) {
    std::ifstream stream(folder / (plot.name + ".svg"), std::ios::binary);
    const std::string picture((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    return "<figure><img src=\"data:image/svg+xml;base64," + base64(picture) + "\" alt=\"" +
           escaped(plot.caption) + "\"><figcaption>" + escaped(plot.caption) + "</figcaption></figure>\n";
}

std::string pageHead(const std::string& title) {
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head><meta charset=\"utf-8\">"
           "<meta name=\"viewport\" content=\"width=device-width\"><title>" +
           title +
           "</title>\n<style>"
           "body{font:16px/1.5 sans-serif;max-width:72em;margin:2em auto;padding:0 1em}"
           "table{border-collapse:collapse;margin:1em 0}"
           "td,th{padding:.2em .8em;border-bottom:1px solid #ccc;text-align:left}"
           "td.number,th.number{text-align:right;font-variant-numeric:tabular-nums;white-space:nowrap}"
           "td.name{white-space:nowrap}.tight td,.tight th{padding:.2em .5em}"
           ".target{color:#666}.missed{color:#a03000;font-weight:bold}"
           ".pair{display:grid;grid-template-columns:repeat(auto-fit,minmax(30em,1fr));gap:0 1em}"
           "figure{margin:1em 0}figcaption{font-size:.9em;color:#444}img{max-width:100%}"
           "nav ul{columns:3}pre{white-space:pre-wrap}section{border-top:1px solid #ccc;margin-top:2em}"
           "</style></head>\n<body>\n<h1>" +
           title + "</h1>\n";
}

void writePage(const std::string& page, const std::filesystem::path& folder) {
    std::ofstream stream(folder / "index.html");
    stream << page;
    stream.close();
    if (!stream)
        refuseFolder(folder);
}

std::string escaped(std::string_view text) {
    std::string result;
    for (const char letter : text)
        result += letter == '<'   ? "&lt;"
                  : letter == '>' ? "&gt;"
                  : letter == '&' ? "&amp;"
                  : letter == '"' ? "&quot;"
                                  : std::string(1, letter);
    return result;
}

std::string shortest(double number) {
    std::ostringstream text;
    text << number;
    return text.str();
}

std::string fixedText(double number, int decimals) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(decimals) << std::abs(number);
    const bool isNought = text.str().find_first_not_of("0.") == std::string::npos;
    return number < 0 && !isNought ? "−" + text.str() : text.str();
}

} // namespace orvane::kestrum::tools
