// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "binaural/IConvolution.h"
#include "filters/IChannelProcessor.h"

#include <memory>

namespace orvane {

/// Makes what one BinauralReverb owns.
///
/// Thread  building thread.
/// Errors  std::bad_alloc only.
class IBinauralReverbBuilder {
public:
    virtual ~IBinauralReverbBuilder() = default;

    /// The band that the reverb is fed with; follows the parameters from block to block.
    virtual std::unique_ptr<IChannelProcessor> createInputFilters() const = 0;
    virtual std::unique_ptr<IConvolution> createConvolution() const = 0;
};

} // namespace orvane
