// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/ReflectionRenderer.h"

#include "engine/fades/Ramps.h"

#include <algorithm>
#include <utility>

namespace orvane {

namespace {

constexpr float fullBand = 20000.0f; // hertz; replaced before each use
constexpr float filterQ = 0.707f;
constexpr std::uint64_t endRamp = 15; // samples

} // namespace

ReflectionRenderer::ReflectionRenderer(float sampleRate, std::uint64_t responseLength, bool simple,
                                       ISpatialParameterSetView* view, IHrir* hrir,
                                       std::unique_ptr<IReflectionMechanic> mechanic,
                                       IBiquadFilterFactory* filterFactory)
    : maxDelay(static_cast<std::int64_t>(responseLength) - static_cast<std::int64_t>(hrir->length())),
      simple(simple),
      hrir(hrir),
      view(view),
      mechanic(std::move(mechanic)),
      reflections(this->mechanic->reflections()),
      filters{filterFactory->createLowPass(sampleRate, fullBand, filterQ),
              filterFactory->createLowPass(sampleRate, fullBand * 0.5f, filterQ)},
      scratch(2, responseLength + static_cast<std::uint64_t>(std::max<std::int64_t>(0, maxDelay))),
      shifter(scratch.numSamples) {}

void ReflectionRenderer::process(SampleBuffer& buffer) {
    mechanic->update(reflections, *view, static_cast<std::int32_t>(maxDelay));
    for (const Reflection& reflection : reflections) {
        if (reflection.active)
            add(reflection, buffer);
    }
}

void ReflectionRenderer::add(const Reflection& reflection, SampleBuffer& buffer) {
    IBiquadFilter& filter = *filters[reflection.filter];
    filter.setFrequency(view->getReflectionLowPassFrequency() / static_cast<float>(reflection.filter + 1));
    filter.setQ(filterQ);
    scratch.clear();
    hrir->getResponse(scratch, reflection.azimuth, reflection.elevation, simple);
    scratch.multiplyBy(reflection.gain);
    for (std::uint64_t channel = 0; channel < scratch.numChannels; ++channel) {
        // A fresh impulse response each time, not a running signal.
        filter.reset();
        filter.processInPlace(scratch.channelPointers[channel], hrir->length(), 1.0f);
    }
    rampDownLinear(scratch, hrir->length(), endRamp);
    shifter.shift = static_cast<std::uint64_t>(reflection.delay);
    shifter.process(scratch);
    buffer.addFrom(scratch);
}

} // namespace orvane
