// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <xmmintrin.h>

namespace test {

/// Has the processor take denormal numbers for zero, as the plug-in does while it plays.
class FlushDenormals {
public:
    explicit FlushDenormals(bool flush = true) {
        constexpr unsigned flushToZero = 0x8000;
        constexpr unsigned denormalsAreZero = 0x0040;
        if (flush)
            _mm_setcsr(before | flushToZero | denormalsAreZero);
    }
    ~FlushDenormals() { _mm_setcsr(before); }
    FlushDenormals(const FlushDenormals&) = delete;
    FlushDenormals& operator=(const FlushDenormals&) = delete;

private:
    unsigned before = _mm_getcsr();
};

} // namespace test
