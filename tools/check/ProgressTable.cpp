// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/ProgressTable.h"

#include <unistd.h>

#include <algorithm>

namespace orvane::kestrum::check {

namespace {

constexpr std::size_t barWidth = 40;

} // namespace

ProgressTable::ProgressTable(std::FILE* stream, std::vector<std::string> names)
    : stream(stream),
      names(std::move(names)),
      told(this->names.size()),
      terminal(isatty(fileno(stream)) == 1) {
    for (const std::string& name : this->names)
        width = std::max(width, name.size());
}

void ProgressTable::show(const std::vector<double>& shares) {
    if (terminal)
        redraw(shares);
    else
        report(shares);
    std::fflush(stream);
}

void ProgressTable::redraw(const std::vector<double>& shares) {
    if (drawn)
        std::fprintf(stream, "\033[%zuA", names.size());
    drawn = true;
    for (std::size_t row = 0; row < names.size(); ++row) {
        const double share = std::clamp(shares[row], 0.0, 1.0);
        const auto filled = static_cast<std::size_t>(share * static_cast<double>(barWidth));
        const std::string bar = std::string(filled, '#') + std::string(barWidth - filled, '.');
        std::fprintf(stream, "\033[K%-*s [%s] %3.0f %%\n", static_cast<int>(width), names[row].c_str(),
                     bar.c_str(), 100 * share);
    }
}

void ProgressTable::report(const std::vector<double>& shares) {
    for (std::size_t row = 0; row < names.size(); ++row) {
        if (told[row] || shares[row] < 1)
            continue;
        told[row] = true;
        std::fprintf(stream, "%s: done\n", names[row].c_str());
    }
}

} // namespace orvane::kestrum::check
