// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/ZeroStuff.h"

#include <algorithm>
#include <cassert>

namespace orvane {

void zeroStuff(std::vector<float>& samples, std::int32_t fromRate, std::int32_t toRate,
               std::uint16_t channels) {
    if (toRate <= fromRate)
        return;
    assert(fromRate > 0 && channels > 0);
    const std::uint64_t group = static_cast<std::uint64_t>(toRate / fromRate) * channels;
    if (samples.size() <= group) // one frame stays where it is
        return;
    assert(samples.size() % group == 0);
    // Backward, so that no frame is overwritten before it has moved.
    for (std::uint64_t target = samples.size() - group; target >= group; target -= group) {
        const std::uint64_t source = target / group * channels;
        for (std::uint64_t channel = 0; channel < channels; ++channel)
            samples[target + channel] = samples[source + channel];
        std::fill_n(samples.begin() + static_cast<std::ptrdiff_t>(target - group + channels),
                    group - channels, 0.0f);
    }
}

} // namespace orvane
