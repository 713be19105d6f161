// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

namespace orvane {

/// Spreads interleaved frames in place to a higher rate: each stored frame moves to `toRate / fromRate` times
/// its position, with zeros between. Neither scaled nor filtered: whoever convolves with the result keeps
/// only the bins below the stored material's Nyquist frequency.
///
/// Shape   samples [toRate / fromRate * stored frames * channels]; the stored frames at the front, zeros
///         behind.
/// Units   rates in hertz. A ratio that is not whole is cut down; a target that is not higher changes
/// nothing.
void zeroStuff(std::vector<float>& samples, std::int32_t fromRate, std::int32_t toRate,
               std::uint16_t channels);

} // namespace orvane
