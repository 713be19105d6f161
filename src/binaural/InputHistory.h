// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"
#include "base/SampleSpan.h"

#include <cstdint>
#include <vector>

namespace orvane {

/// The last samples of a signal, for those who look at more of it at a time than one block.
///
/// What is no number or beyond any sound is kept as 0: one such sample would silence a whole long partition, for
/// longer than the block that it came in.
///
/// Thread  the constructor allocates; everything else is fit for the audio thread.
class InputHistory {
public:
    /// @param length samples that can be looked back at, 1 or more.
    explicit InputHistory(std::uint64_t length) : samples(length) {}

    void push(SampleSpan block) noexcept ORVANE_REALTIME;

    /// Samples pushed so far.
    std::uint64_t end() const noexcept ORVANE_REALTIME { return pushed; }

    /// Copies the `count` samples that end `delay` samples before position `last`; what lies before the first
    /// one pushed is zeros.
    ///
    /// Shape   target [count].
    /// @param last at most end(); end() - last + delay + count is at most the history's length.
    void copyBefore(std::uint64_t last, std::uint64_t delay, float* target,
                    std::uint64_t count) const noexcept ORVANE_REALTIME;

private:
    std::vector<float> samples; ///< A ring; position p lies at p modulo its length.
    std::uint64_t pushed = 0;
};

} // namespace orvane
