// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdio>

namespace orvane::kestrum::render {

/// One line that fills from left to right, on a terminal only. Gone when the object is.
class ProgressBar {
public:
    /// @param stream where to draw; nothing is drawn when it is no terminal.
    explicit ProgressBar(std::FILE* stream);
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    ~ProgressBar();

    /// @param share done, 0 to 1. Redraws a few times a second at most.
    void show(double share);

private:
    std::FILE* stream;
    bool drawing;
    std::chrono::steady_clock::time_point next{};
};

} // namespace orvane::kestrum::render
