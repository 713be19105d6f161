// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

#include <cstdint>

namespace orvane {

/// A run of samples that belongs to somebody else.
///
/// Shape   [length]; `data` may be null only when `length` is 0.
struct SampleSpan {
    float* data = nullptr;    ///< Borrowed from a buffer that outlives the span.
    std::uint64_t length = 0; ///< In samples.

    float& operator[](std::uint64_t index) const noexcept ORVANE_REALTIME { return data[index]; }
    float* begin() const noexcept ORVANE_REALTIME { return data; }
    float* end() const noexcept ORVANE_REALTIME { return data + length; }
};

} // namespace orvane
