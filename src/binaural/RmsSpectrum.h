// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "binaural/IRmsSpectrum.h"

#include <cstdint>
#include <vector>

namespace orvane {

class RmsSpectrum final : public IRmsSpectrum {
public:
    explicit RmsSpectrum(std::uint64_t length);
    void compute(const PartitionedSpectrum& spectra, float* out) ORVANE_REALTIME override;

private:
    std::vector<float> leftPower;  ///< [length]
    std::vector<float> rightPower; ///< [length]
};

} // namespace orvane
