// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Engine.h"

#include <algorithm>
#include <utility>

namespace orvane::kestrum::core {

namespace {

constexpr double settlingSeconds = 0.01; // longer than the master gain's ramp
constexpr float lowFrequencyCutoffHz = 80.0f;
constexpr float lowFrequencyQ = 1.0f;
constexpr float lowFrequencyInputGain = 3.1622777f; // +10 dB
constexpr float lowFrequencyDistanceMetres = 1.5f;

} // namespace

Engine::Engine(double sampleRate, std::uint64_t blockSize, std::uint64_t channelCount,
               float gainCompensationDb, IParameterSet* parameterSet, IHrir* hrir,
               const IComponentFactory* componentFactory, std::unique_ptr<IReverbProcessor> reverbProcessor,
               std::unique_ptr<IFade> inputFade)
    : sampleRate(sampleRate),
      blockSize(blockSize),
      parameterSet(parameterSet),
      hrir(hrir),
      workBuffer(channelCount, blockSize),
      mixBuffer(2, blockSize),
      speakerBuffer(2, blockSize),
      reverbBuffer(2, blockSize),
      settlingBuffer(2, static_cast<std::uint64_t>(settlingSeconds * sampleRate)),
      inputFifo(channelCount, SampleRing(2 * blockSize)),
      outputFifo(2, SampleRing(2 * blockSize)),
      componentFactory(componentFactory),
      reverbProcessor(std::move(reverbProcessor)),
      inputFade(std::move(inputFade)) {
    outputProcessor = componentFactory->createOutputProcessor(sampleRate, parameterSet, gainCompensationDb);
    reloadParameters = parameterSet->createReloadParameterSet();
    for (SampleRing& ring : outputFifo)
        ring.push(mixBuffer.channelPointers[0], blockSize); // still zeros
}

void Engine::addSpeaker(const Speaker& speaker, std::size_t channelIndex) {
    spatialProcessors.emplace(channelIndex, componentFactory->createSpeakerProcessor(
                                                speaker.position, parameterSet, sampleRate, blockSize, hrir));
}

void Engine::addLowFrequencyChannel(std::size_t channelIndex) {
    std::unique_ptr<IGenericBiquadFilter> filter = componentFactory->createLowpassFilter(sampleRate);
    filter->setFrequency(lowFrequencyCutoffHz);
    filter->setQ(lowFrequencyQ);
    filter->setInputGain(lowFrequencyInputGain); // a low pass has no gain of its own
    channelFilters.emplace(channelIndex, std::move(filter));
    addSpeaker({SpatialPosition(0, 0, lowFrequencyDistanceMetres)}, channelIndex);
}

void Engine::settleOutputGain() { outputProcessor->process(settlingBuffer); }

void Engine::process(const SampleBuffer& input, SampleBuffer& output) {
    if (input.numChannels < workBuffer.numChannels) {
        output.clear();
        return;
    }
    for (std::size_t channel = 0; channel < inputFifo.size(); ++channel) {
        const SampleSpan samples = input.channel(busOrder != nullptr ? busOrder->get(channel) : channel);
        inputFifo[channel].push(samples.data, samples.length);
    }
    if (inputFifo.front().size() >= blockSize)
        renderBlock();
    else if (reloadParameters->hasReverb())
        reverbProcessor->workAhead(inputFifo.front().size());

    const std::uint64_t frames = std::min(output.numSamples, outputFifo.front().size());
    for (std::size_t channel = 0; channel < outputFifo.size() && channel < output.numChannels; ++channel)
        outputFifo[channel].pop(output.channelPointers[channel], frames);
    for (std::uint64_t channel = outputFifo.size(); channel < output.numChannels; ++channel)
        std::fill_n(output.channelPointers[channel], output.numSamples, 0.0f);
}

void Engine::renderBlock() {
    for (std::size_t channel = 0; channel < inputFifo.size(); ++channel)
        inputFifo[channel].pop(workBuffer.channelPointers[channel], blockSize);
    mixBuffer.clear();
    inputFade->apply(workBuffer);
    for (const auto& [channel, filter] : channelFilters)
        filter->process(workBuffer.channel(channel));
    for (const auto& [channel, processor] : spatialProcessors) {
        const SampleBuffer source(&workBuffer.channelPointers[channel], 1, blockSize);
        processor->process(source, speakerBuffer);
        mixBuffer.addFrom(speakerBuffer);
    }
    if (reloadParameters->hasReverb()) {
        reverbProcessor->process(workBuffer, reverbBuffer);
        mixBuffer.addFrom(reverbBuffer);
    }
    outputProcessor->process(mixBuffer);
    for (std::size_t channel = 0; channel < outputFifo.size(); ++channel) {
        const SampleSpan samples = mixBuffer.channel(channel);
        outputFifo[channel].push(samples.data, samples.length);
    }
}

std::uint64_t Engine::speakerCount() const noexcept { return spatialProcessors.size(); }

} // namespace orvane::kestrum::core
