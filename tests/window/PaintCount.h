// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

namespace orvane::kestrum::host::test {

/// Counts what anyone draws on the whole screen, as the display's server reports it: also what looks the same afterwards.
///
/// Thread  one at a time.
class PaintCount {
public:
    PaintCount(); ///< Counts from here on.
    PaintCount(const PaintCount&) = delete;
    PaintCount& operator=(const PaintCount&) = delete;
    ~PaintCount();

    /// Areas drawn since the last call, or since the construction.
    int sinceLastCall();

private:
    struct Watch;
    std::unique_ptr<Watch> watch;
};

} // namespace orvane::kestrum::host::test
