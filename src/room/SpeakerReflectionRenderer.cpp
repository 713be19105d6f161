// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/SpeakerReflectionRenderer.h"

#include "engine/fades/Ramps.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace orvane::kestrum::core {

namespace {

constexpr std::uint64_t farthestSample = 4096; // of a response, at every rate
constexpr std::size_t reflectionLimit = 6;
constexpr float filterQ = 0.707f;
constexpr std::uint64_t endRamp = 15; // samples

} // namespace

ReflectionRenderer::ReflectionRenderer(float sampleRate, std::uint64_t responseLength, bool simple,
                                       ISpeakerParameterSetView* view, IHrir* hrir,
                                       std::unique_ptr<IReflectionMechanic> mechanic,
                                       const IBinauralComponentFactory& binauralFactory,
                                       const IComponentFactory& componentFactory)
    : maxDelay(static_cast<std::int64_t>(std::min(responseLength, farthestSample)) -
               static_cast<std::int64_t>(hrir->length())),
      simple(simple),
      view(view),
      clarity(binauralFactory.createClarityProcessor(hrir->length(), &clarityAmount)),
      hrir(hrir),
      mechanic(std::move(mechanic)),
      reflections(this->mechanic->reflections()),
      hrirBuffer(2, hrir->length()),
      delayBuffer(2, std::min(responseLength, farthestSample)),
      shifter(delayBuffer.numSamples),
      highPass(componentFactory.createRumbleFilter(sampleRate)),
      filters{componentFactory.createLowpassFilter(sampleRate),
              componentFactory.createLowpassFilter(sampleRate)} {}

void ReflectionRenderer::process(SampleBuffer& buffer) {
    mechanic->update(reflections, *view, static_cast<std::int32_t>(maxDelay));
    highPass->setFrequency(view->getReflectionHighPassFrequency());
    highPass->setQ(filterQ);
    for (std::size_t i = 0; i < std::min(reflections.size(), reflectionLimit); ++i) {
        if (reflections[i].active)
            add(reflections[i], buffer);
    }
}

void ReflectionRenderer::add(const Reflection& reflection, SampleBuffer& buffer) {
    IGenericBiquadFilter& lowPass = *filters[reflection.filter];
    lowPass.setFrequency(view->getReflectionLowPassFrequency() / static_cast<float>(reflection.filter + 1));
    lowPass.setQ(filterQ);
    delayBuffer.clear();
    hrirBuffer.clear();
    hrir->getResponse(hrirBuffer, reflection.azimuth, reflection.elevation, simple);
    clarityAmount = view->getClarity();
    clarity->process(hrirBuffer);
    hrirBuffer.multiplyBy(reflection.gain);
    for (std::uint64_t channel = 0; channel < hrirBuffer.numChannels; ++channel) {
        // A fresh impulse response each time, not a running signal.
        lowPass.reset();
        highPass->reset();
        lowPass.process(hrirBuffer.channel(channel));
        highPass->process(hrirBuffer.channel(channel));
    }
    delayBuffer.copyFrom(hrirBuffer);
    rampDownLinear(delayBuffer, hrir->length(), endRamp);
    shifter.shift = static_cast<std::uint64_t>(reflection.delay);
    shifter.process(delayBuffer);
    buffer.addFrom(delayBuffer);
}

} // namespace orvane::kestrum::core
