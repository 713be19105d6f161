// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/OutputProcessor.h"

namespace orvane::kestrum::core {

OutputProcessor::OutputProcessor(double sampleRate, IParameterSet* parameters, float gainCompensationDb,
                                 const IComponentFactory* componentFactory)
    : parameterSet(parameters),
      outputGainDb(parameterSet->getOutputGainDb()) { // present value: no ramp at the start
    stages.push_back(componentFactory->createBassReductionProcessor(sampleRate));
    stages.push_back(componentFactory->createMasterGainProcessor(&outputGainDb, sampleRate));
    stages.push_back(componentFactory->createGainCompensationProcessor(gainCompensationDb));
}

void OutputProcessor::process(SampleBuffer& buffer) {
    outputGainDb = parameterSet->getOutputGainDb();
    for (const std::unique_ptr<IInPlaceProcessor>& stage : stages)
        stage->process(buffer);
}

} // namespace orvane::kestrum::core
