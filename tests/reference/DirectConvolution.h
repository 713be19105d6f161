// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

namespace test::reference {

/// y[n] = sum over m of h[m] x[n - m] for n in [first, first + count), silence before the input's start.
inline std::vector<double> convolve(std::span<const float> input, std::span<const float> response,
                                    std::size_t first, std::size_t count) {
    std::vector<double> output(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t n = first + i;
        for (std::size_t m = 0; m < std::min(response.size(), n + 1); ++m)
            if (n - m < input.size())
                output[i] += static_cast<double>(response[m]) * static_cast<double>(input[n - m]);
    }
    return output;
}

} // namespace test::reference
