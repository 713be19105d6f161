// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IComponentFactory.h"
#include "base/IReverbProcessor.h"
#include "base/ISpatialProcessor.h"
#include "base/SampleBuffer.h"
#include "data/FileReader.h"
#include "parameters/core/IParameterSet.h"
#include "room/IReverbFilterFactory.h"

#include <cstdint>
#include <memory>
#include <string>

namespace orvane::kestrum::core {

/// One late reverb for all loudspeakers of an engine: every channel of the bus, also those without a
/// loudspeaker, goes into one mono sum. That costs one long convolution instead of sixteen.
///
/// Thread  constructed on a building thread, process() on the audio thread.
class ReverbProcessor final : public IReverbProcessor {
public:
    /// Reads the response of the room that is selected at this moment.
    ///
    /// Units   sampleRate in hertz, blockSize in samples.
    /// @param parameterSet borrowed; the factories are needed during construction only.
    /// Errors  sampleRateNotSupportedException, wavNotReadableException.
    ReverbProcessor(double sampleRate, std::uint64_t blockSize,
                    const IReverbFilterFactory& reverbFilterFactory,
                    const IComponentFactory& componentFactory, IParameterSet* parameterSet,
                    const std::string& dataDirectory);

    void process(const SampleBuffer& input, SampleBuffer& output) ORVANE_REALTIME override;
    void workAhead(std::uint64_t pendingSamples) ORVANE_REALTIME override;

private:
    FileReader fileReader;
    std::unique_ptr<IReloadParameterSet> reloadSet;
    SampleBuffer monoSum; ///< [1][blockSize]
    std::unique_ptr<ISpatialProcessor> binauralReverb;
};

} // namespace orvane::kestrum::core
