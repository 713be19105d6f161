// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/SpeakerReflectionRenderer.h"

#include "engine/fades/Ramps.h"

#include <algorithm>
#include <utility>

namespace orvane::kestrum::core {

namespace {

constexpr std::uint64_t farthestSample = 4096; // of a response, at every rate
constexpr float filterQ = 0.707f;
constexpr std::uint64_t endRamp = 15; // samples

/// What adding nothing does to samples: -0 becomes +0.
void addZeros(float* samples, std::uint64_t begin, std::uint64_t end) noexcept {
    for (std::uint64_t i = begin; i < end; ++i)
        samples[i] += 0.0f;
}

} // namespace

ReflectionRenderer::ReflectionRenderer(float sampleRate, std::uint64_t responseLength, bool simple,
                                       ISpeakerParameterSetView* view, IHrir* hrir,
                                       std::unique_ptr<IReflectionMechanic> mechanic,
                                       const IBinauralComponentFactory& binauralFactory,
                                       const IComponentFactory& componentFactory)
    : maxDelay(static_cast<std::int64_t>(std::min(responseLength, farthestSample)) -
               static_cast<std::int64_t>(hrir->length())),
      view(view),
      hrir(hrir),
      response(hrir, simple, binauralFactory),
      mechanic(std::move(mechanic)),
      reflections(this->mechanic->reflections()),
      hrirBuffer(2, hrir->length()),
      delayBuffer(2, std::min(responseLength, farthestSample)),
      shifter(delayBuffer.numSamples),
      highPass(componentFactory.createRumbleFilter(sampleRate)),
      filters{componentFactory.createLowpassFilter(sampleRate),
              componentFactory.createLowpassFilter(sampleRate)},
      rampBuffer(2, delayBuffer.numSamples) {
    for (Piece& piece : pieces)
        piece.samples = hrirBuffer;
}

void ReflectionRenderer::process(SampleBuffer& buffer) {
    mechanic->update(reflections, *view, static_cast<std::int32_t>(maxDelay));
    const Common common = present();
    for (std::size_t i = 0; i < heardCount(); ++i) {
        if (reflections[i].active)
            add(reflections[i], common, buffer);
    }
}

void ReflectionRenderer::describe(ResponseKey& key) {
    mechanic->update(reflections, *view, static_cast<std::int32_t>(maxDelay));
    described = present();
    key.append(described.generation);
    key.append(described.headLength);
    key.append(described.clarity);
    key.append(described.lowPass);
    key.append(described.highPass);
    for (std::size_t i = 0; i < heardCount(); ++i) {
        const Reflection& reflection = reflections[i];
        key.append(std::uint32_t{reflection.active});
        if (!reflection.active)
            continue;
        key.append(hrir->cell(reflection.azimuth, reflection.elevation));
        key.append(static_cast<std::uint32_t>(reflection.delay));
        key.append(static_cast<std::uint32_t>(reflection.filter));
        key.append(reflection.gain);
    }
}

bool ReflectionRenderer::draw(SampleBuffer& buffer) {
    bool asDescribed = true;
    Range doubtful{0, std::min(delayBuffer.numSamples, buffer.numSamples)};
    for (std::size_t i = 0; i < heardCount(); ++i) {
        if (!reflections[i].active)
            continue;
        asDescribed &= refresh(pieces[i], reflections[i]);
        doubtful = addPiece(pieces[i], reflections[i].delay, doubtful, buffer);
    }
    return asDescribed;
}

/// The definition of a reflection: all of the buffer is shifted and added.
void ReflectionRenderer::add(const Reflection& reflection, const Common& common, SampleBuffer& buffer) {
    delayBuffer.clear();
    hrirBuffer.clear();
    response.compute(hrirBuffer, reflection.azimuth, reflection.elevation, common.clarity);
    shape(reflection, common);
    delayBuffer.copyFrom(hrirBuffer);
    rampDownLinear(delayBuffer, common.headLength, endRamp);
    shifter.shift = static_cast<std::uint64_t>(reflection.delay);
    shifter.process(delayBuffer);
    buffer.addFrom(delayBuffer);
}

/// Gain and filters, on the clarified response in `hrirBuffer`.
void ReflectionRenderer::shape(const Reflection& reflection, const Common& common) {
    IGenericBiquadFilter& lowPass = *filters[reflection.filter];
    lowPass.setFrequency(common.lowPass / static_cast<float>(reflection.filter + 1));
    lowPass.setQ(filterQ);
    highPass->setFrequency(common.highPass);
    highPass->setQ(filterQ);
    hrirBuffer.multiplyBy(reflection.gain);
    for (std::uint64_t channel = 0; channel < hrirBuffer.numChannels; ++channel) {
        // A fresh impulse response each time, not a running signal.
        lowPass.reset();
        highPass->reset();
        lowPass.process(hrirBuffer.channel(channel));
        highPass->process(hrirBuffer.channel(channel));
    }
}

/// Makes the piece that of a reflection as described.
/// @return false when it is of a later set of responses.
bool ReflectionRenderer::refresh(Piece& piece, const Reflection& reflection) {
    const ResponseKey wanted = pieceKey(reflection, described.generation);
    if (piece.valid && piece.key == wanted)
        return true;
    piece.valid = false;
    hrirBuffer.clear();
    const std::uint64_t generation =
        response.get(hrirBuffer, reflection.azimuth, reflection.elevation, described.clarity);
    shape(reflection, described);
    rampBuffer.copyFrom(hrirBuffer);
    rampDownLinear(rampBuffer, described.headLength, endRamp);
    piece.samples.copyFrom(rampBuffer);
    piece.key = pieceKey(reflection, generation);
    piece.valid = true;
    return generation == described.generation;
}

/// Adds a piece where its delay puts it. Elsewhere the definition adds zeros, which is felt only where the
/// buffer may hold -0: in what is `doubtful`.
/// @return what may still hold -0.
ReflectionRenderer::Range ReflectionRenderer::addPiece(const Piece& piece, std::int32_t delay, Range doubtful,
                                                       SampleBuffer& buffer) const {
    const std::uint64_t reach = std::min(delayBuffer.numSamples, buffer.numSamples);
    const std::uint64_t begin = std::min(static_cast<std::uint64_t>(delay), reach);
    const std::uint64_t end = std::min(begin + piece.samples.numSamples, reach);
    for (std::uint64_t ear = 0; ear < piece.samples.numChannels; ++ear) {
        float* const target = buffer.channelPointers[ear];
        const float* const source = piece.samples.channelPointers[ear];
        addZeros(target, doubtful.begin, std::min(doubtful.end, begin));
        addZeros(target, std::max(doubtful.begin, end), doubtful.end);
        for (std::uint64_t i = begin; i < end; ++i)
            target[i] += source[i - begin];
    }
    return {std::max(doubtful.begin, begin), std::min(doubtful.end, end)};
}

ReflectionRenderer::Common ReflectionRenderer::present() const {
    return {.generation = hrir->generation(),
            .headLength = hrir->length(),
            .clarity = view->getClarity(),
            .lowPass = view->getReflectionLowPassFrequency(),
            .highPass = view->getReflectionHighPassFrequency()};
}

std::size_t ReflectionRenderer::heardCount() const noexcept {
    return std::min(reflections.size(), reflectionLimit);
}

/// What a piece of the set `generation` depends on: not its delay.
ResponseKey ReflectionRenderer::pieceKey(const Reflection& reflection, std::uint64_t generation) const {
    ResponseKey key;
    key.append(generation);
    key.append(described.headLength);
    key.append(described.clarity);
    key.append(described.lowPass);
    key.append(described.highPass);
    key.append(hrir->cell(reflection.azimuth, reflection.elevation));
    key.append(static_cast<std::uint32_t>(reflection.filter));
    key.append(reflection.gain);
    return key;
}

} // namespace orvane::kestrum::core
