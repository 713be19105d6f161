// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/IIrFile.h"

#include <vector>

namespace orvane {

/// Fills the HRIR store from the file of a rate.
class IHrirReader {
public:
    virtual ~IHrirReader() = default;

    /// Shape   samples [2 * length * responseCount], resized here: interleaved stereo at the running rate.
    /// Errors  the exceptions of readWaveFrames().
    virtual void read(const IIrFile& file, std::vector<float>& samples) = 0;
};

} // namespace orvane
