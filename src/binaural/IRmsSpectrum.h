// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

#include <cstdint>
#include <memory>

namespace orvane {

class PartitionedSpectrum;

/// The magnitude that both ears have in common.
class IRmsSpectrum {
public:
    virtual ~IRmsSpectrum() = default;

    /// `out[k] = sqrt((|L[k]|^2 + |R[k]|^2) / 2)` for every bin but the last one (Nyquist), which is not
    /// measured.
    ///
    /// Shape   spectra [2][bins], left and right; out [bins - 1].
    /// Thread  audio thread only.
    virtual void compute(const PartitionedSpectrum& spectra, float* out) ORVANE_REALTIME = 0;
};

/// Makes what measures the spectra. Stateless.
class IRmsSpectrumFactory {
public:
    virtual ~IRmsSpectrumFactory() = default;

    /// @param length bins that are measured.
    virtual std::unique_ptr<IRmsSpectrum> create(std::uint64_t length) = 0;
};

} // namespace orvane
