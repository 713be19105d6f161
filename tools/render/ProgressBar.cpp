// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/ProgressBar.h"

#include <unistd.h>

#include <algorithm>
#include <string>

namespace orvane::kestrum::render {

namespace {

constexpr std::size_t width = 50;
constexpr std::chrono::milliseconds pause{80};

} // namespace

ProgressBar::ProgressBar(std::FILE* stream) : stream(stream), drawing(isatty(fileno(stream)) == 1) {}

ProgressBar::~ProgressBar() {
    if (drawing)
        std::fputs("\r\033[K", stream);
}

void ProgressBar::show(double share) {
    const auto now = std::chrono::steady_clock::now();
    if (!drawing || now < next)
        return;
    next = now + pause;
    const auto filled = static_cast<std::size_t>(std::clamp(share, 0.0, 1.0) * static_cast<double>(width));
    const std::string bar = std::string(filled, '#') + std::string(width - filled, '.');
    std::fprintf(stream, "\r[%s] %3.0f %%", bar.c_str(), 100 * std::clamp(share, 0.0, 1.0));
    std::fflush(stream);
}

} // namespace orvane::kestrum::render
