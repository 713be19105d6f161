// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IComponentFactory.h"
#include "base/IInPlaceProcessor.h"
#include "base/SampleBuffer.h"
#include "parameters/core/IParameterSet.h"

#include <memory>
#include <vector>

namespace orvane::kestrum::core {

/// Finishes the stereo mix: bass reduction, then master gain, then the layout's gain compensation.
class OutputProcessor final : public IInPlaceProcessor {
public:
    /// Units   sampleRate in hertz, gainCompensationDb in decibels.
    /// @param parameterSet borrowed; its output gain is read at every block.
    OutputProcessor(double sampleRate, IParameterSet* parameterSet, float gainCompensationDb,
                    const IComponentFactory* componentFactory);

    void process(SampleBuffer& buffer) ORVANE_REALTIME override;

private:
    IParameterSet* parameterSet;
    float outputGainDb; ///< This block's output gain; read by the master gain stage.
    std::vector<std::unique_ptr<IInPlaceProcessor>> stages;
};

} // namespace orvane::kestrum::core
