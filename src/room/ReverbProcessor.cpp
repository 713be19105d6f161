// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/ReverbProcessor.h"

#include "room/ExpectedDecay.h"
#include "room/ReverbImpulseResponse.h"

#include <utility>

namespace orvane::kestrum::core {

ReverbProcessor::ReverbProcessor(double sampleRate, std::uint64_t blockSize,
                                 const IReverbFilterFactory& reverbFilterFactory,
                                 const IComponentFactory& componentFactory, IParameterSet* parameterSet,
                                 const std::string& dataDirectory)
    : reloadSet(parameterSet->createReloadParameterSet()), monoSum(1, blockSize) {
    auto filter = reverbFilterFactory.create(static_cast<std::int32_t>(sampleRate), blockSize,
                                             std::make_unique<ReverbImpulseResponse>(&fileReader),
                                             dataDirectory, reloadSet->roomId());
    binauralReverb = componentFactory.createBinauralReverb(
        blockSize, sampleRate, parameterSet, std::move(filter), expectedDecay(*reloadSet, *parameterSet));
}

void ReverbProcessor::process(const SampleBuffer& input, SampleBuffer& output) {
    monoSum.clear();
    for (std::uint64_t channel = 0; channel < input.numChannels; ++channel) {
        const SampleBuffer oneChannel(&input.channelPointers[channel], 1, input.numSamples);
        monoSum.addFrom(oneChannel);
    }
    binauralReverb->process(monoSum, output);
}

void ReverbProcessor::workAhead(std::uint64_t pendingSamples) { binauralReverb->workAhead(pendingSamples); }

} // namespace orvane::kestrum::core
