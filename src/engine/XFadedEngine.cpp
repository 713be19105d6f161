// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/XFadedEngine.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace orvane {

namespace {

float fadeStep(double fadeMilliseconds, double sampleRate) noexcept {
    const double length = fadeMilliseconds * sampleRate;
    return length > 0 ? static_cast<float>(1000.0 / length) : 1.0f;
}

/// An engine always writes stereo, whatever its number of speakers.
std::uint64_t outputChannels(const IEngine* engine) noexcept {
    return engine != nullptr ? std::max<std::uint64_t>(2, engine->speakerCount()) : 0;
}

/// The first `frames` of `output` are the old engine's, and silence where that has delivered nothing.
void keepOld(SampleBuffer& output, const SampleBuffer& old, std::uint64_t frames) noexcept {
    SampleBuffer part(output.channelPointers, output.numChannels, frames);
    part.clear();
    part.copyFrom(old);
}

} // namespace

XFadedEngine::XFadedEngine(std::shared_ptr<IEngine> oldEngine, std::unique_ptr<IEngine> newEngine,
                           std::uint64_t blockSize, double sampleRate, float fadeMilliseconds,
                           std::unique_ptr<zmtl::ISleep> sleep, std::function<void()> fadeStarted)
    : oldEngine(std::move(oldEngine)),
      oldParameters(dynamic_cast<IParameterFreeze*>(this->oldEngine.current().get())),
      oldOutput(outputChannels(this->oldEngine.current().get()),
                this->oldEngine.current() != nullptr ? blockSize : 0),
      newEngine(std::move(newEngine)),
      newParameters(dynamic_cast<IParameterFreeze*>(this->newEngine.get())),
      framesToNewSound(blockSize),
      step(fadeStep(fadeMilliseconds, sampleRate)),
      phase(step),
      sleep(std::move(sleep)),
      fadeStarted(std::move(fadeStarted)) {
    if (this->oldEngine.current() != nullptr)
        releaseTask =
            std::async(std::launch::async, [this, fadeMilliseconds] { releaseOldEngine(fadeMilliseconds); });
}

XFadedEngine::~XFadedEngine() {
    using namespace std::chrono_literals;
    running = false;
    if (releaseTask.valid()) {
        // Repeated, since a wake-up that comes just before the task goes to sleep would be lost.
        do
            sleep->wake();
        while (releaseTask.wait_for(1ms) != std::future_status::ready);
    }
}

void XFadedEngine::releaseOldEngine(float fadeMilliseconds) {
    while (running && phase < 1.0f)
        sleep->sleepFor(std::chrono::milliseconds(static_cast<std::int64_t>(fadeMilliseconds)));
    std::shared_ptr<IEngine> released = oldEngine.exchange(nullptr);
    oldOutput.setSize(0, 0);
    released.reset();
}

void XFadedEngine::process(const SampleBuffer& input, SampleBuffer& output) {
    if (newEngine == nullptr)
        return;
    if (phase >= 1.0f) {
        newEngine->process(input, output);
        return;
    }
    // A view as long as the host's block: what the block does not fill is neither rendered nor mixed.
    SampleBuffer old(oldOutput.channelPointers, oldOutput.numChannels,
                     std::min(output.numSamples, oldOutput.numSamples));
    bool mixing = false;
    std::uint64_t fadeFrom = 0;
    {
        const EngineHandover::Reader reader(oldEngine);
        if (IEngine* const engine = reader.engine(); engine != nullptr) {
            if (oldParameters != nullptr)
                oldParameters->freezeParameters();
            engine->process(input, old); // first: output may be the memory of input
            fadeFrom = beginFade(output.numSamples);
            mixing = true;
        } else {
            phase = 1.0f;
        }
    }
    newEngine->process(input, output);
    if (mixing)
        mix(output, old, fadeFrom);
}

/// Counts the block, and calls `fadeStarted` when the fade begins in it.
/// @return the first frame of this block that belongs to the fade.
std::uint64_t XFadedEngine::beginFade(std::uint64_t blockFrames) {
    const std::uint64_t waited = std::min(framesToNewSound, blockFrames);
    framesToNewSound -= waited;
    if (waited == blockFrames)
        return blockFrames;
    FadeState state = FadeState::waiting;
    if (fadeState.compare_exchange_strong(state, FadeState::begun))
        fadeStarted();
    else if (state == FadeState::held)
        return blockFrames;
    return waited;
}

void XFadedEngine::mix(SampleBuffer& output, SampleBuffer& old, std::uint64_t fadeFrom) noexcept {
    keepOld(output, old, fadeFrom);
    float gain = phase;
    for (std::uint64_t frame = fadeFrom; frame < output.numSamples && gain < 1.0f; ++frame) {
        for (std::uint64_t channel = 0; channel < output.numChannels; ++channel) {
            float& sample = output.channelPointers[channel][frame];
            sample *= gain;
            if (channel < old.numChannels && frame < old.numSamples) {
                float& oldSample = old.channelPointers[channel][frame];
                oldSample *= 1.0f - gain;
                sample += oldSample;
            }
        }
        gain += step;
    }
    phase = gain; // last: from 1.0 on, the old engine and its output belong to the release task
}

std::uint64_t XFadedEngine::speakerCount() const noexcept {
    return newEngine != nullptr ? newEngine->speakerCount() : 0;
}

std::shared_ptr<IEngine> XFadedEngine::holdFade() noexcept {
    FadeState expected = FadeState::waiting;
    if (phase >= 1.0f || !fadeState.compare_exchange_strong(expected, FadeState::held))
        return nullptr;
    return oldEngine.current();
}

void XFadedEngine::freezeParameters() noexcept {
    {
        const EngineHandover::Reader reader(oldEngine);
        if (reader.engine() != nullptr && oldParameters != nullptr)
            oldParameters->freezeParameters();
    }
    if (newParameters != nullptr)
        newParameters->freezeParameters();
}

void XFadedEngine::resumeFade() noexcept {
    FadeState expected = FadeState::held;
    fadeState.compare_exchange_strong(expected, FadeState::waiting);
}

} // namespace orvane
