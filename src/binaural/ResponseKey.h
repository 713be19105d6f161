// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace orvane {

/// Everything that the drawing of a response reads, bit by bit. Equal keys stand for equal responses.
///
/// Compared by bits: a value that is not a number equals itself, so that a response full of them is not drawn
/// again either, and the two zeros differ.
///
/// Thread  fit for the audio thread; a value without memory of its own.
class ResponseKey {
public:
    static constexpr std::size_t capacity = 64; ///< Words of 32 bits.

    void clear() noexcept ORVANE_REALTIME { count = 0; }

    void append(std::uint32_t word) noexcept ORVANE_REALTIME {
        if (count < capacity)
            words[count] = word;
        ++count;
    }
    void append(float value) noexcept ORVANE_REALTIME { append(std::bit_cast<std::uint32_t>(value)); }
    void append(std::uint64_t value) noexcept ORVANE_REALTIME {
        append(static_cast<std::uint32_t>(value));
        append(static_cast<std::uint32_t>(value >> 32));
    }

    /// A key that has overflowed equals none, not even itself: better drawn once too often.
    friend bool operator==(const ResponseKey& a, const ResponseKey& b) noexcept ORVANE_REALTIME {
        return a.count == b.count && a.count <= capacity &&
               std::equal(a.words.begin(), a.words.begin() + a.count, b.words.begin());
    }

private:
    std::array<std::uint32_t, capacity> words{};
    std::size_t count = 0; ///< Words appended, also those that did not fit.
};

} // namespace orvane
