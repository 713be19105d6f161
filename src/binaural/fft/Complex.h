// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane::fft {

/// One complex value, real part first. A plain pair: no rules for infinities slow its products down.
struct Complex {
    float re;
    float im;
};

} // namespace orvane::fft
