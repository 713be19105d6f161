// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/SpeakerProcessor.h"

namespace orvane::kestrum::core {

SpeakerProcessor::SpeakerProcessor(const SpatialPosition& position, IParameterSet* parameterSet,
                                   double sampleRate, std::uint64_t blockSize, IHrir* hrir,
                                   const IComponentFactory* componentFactory)
    : view(componentFactory->createSpeakerParameterSetView(position, parameterSet)),
      binauralProcessor(componentFactory->createBinauralProcessor(sampleRate, blockSize, hrir, view.get(),
                                                                  parameterSet->createReloadParameterSet())) {
}

void SpeakerProcessor::process(const SampleBuffer& input, SampleBuffer& output) {
    binauralProcessor->process(input, output);
}

} // namespace orvane::kestrum::core
