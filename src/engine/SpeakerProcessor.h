// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IComponentFactory.h"
#include "base/ISpatialProcessor.h"
#include "base/SampleBuffer.h"
#include "parameters/core/IParameterSet.h"

#include <cstdint>
#include <memory>

namespace orvane::kestrum::core {

/// One loudspeaker of the layout: its own view of the parameters, and the binaural processor that renders it.
class SpeakerProcessor final : public ISpatialProcessor {
public:
    /// Units   sampleRate in hertz, blockSize in samples.
    /// Errors  throws what making the binaural processor throws.
    SpeakerProcessor(const SpatialPosition& position, IParameterSet* parameterSet, double sampleRate,
                     std::uint64_t blockSize, IHrir* hrir, const IComponentFactory* componentFactory);

    void process(const SampleBuffer& input, SampleBuffer& output) ORVANE_REALTIME override;

private:
    std::unique_ptr<ISpeakerParameterSetView> view; ///< Borrowed by the processor, so it dies after it.
    std::unique_ptr<ISpatialProcessor> binauralProcessor;
};

} // namespace orvane::kestrum::core
