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

} // namespace

XFadedEngine::XFadedEngine(std::shared_ptr<IEngine> oldEngine, std::unique_ptr<IEngine> newEngine,
                           std::uint64_t blockSize, double sampleRate, float fadeMilliseconds,
                           std::unique_ptr<zmtl::ISleep> sleep, std::function<void()> fadeStarted)
    : oldEngine(std::move(oldEngine)),
      oldOutput(outputChannels(this->oldEngine.current().get()),
                this->oldEngine.current() != nullptr ? blockSize : 0),
      newEngine(std::move(newEngine)),
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
    {
        const EngineHandover::Reader reader(oldEngine);
        if (IEngine* const engine = reader.engine(); engine != nullptr) {
            FadeState expected = FadeState::waiting;
            if (!fadeState.compare_exchange_strong(expected, FadeState::begun) &&
                expected == FadeState::held) {
                engine->process(input, output);
                return;
            }
            engine->process(input, old); // first: output may be the memory of input
            if (!fadeStartedCalled) {
                fadeStartedCalled = true;
                fadeStarted();
            }
            mixing = true;
        } else {
            phase = 1.0f;
        }
    }
    newEngine->process(input, output);
    if (mixing)
        mix(output, old);
}

void XFadedEngine::mix(SampleBuffer& output, SampleBuffer& old) noexcept {
    float gain = phase;
    for (std::uint64_t frame = 0; frame < output.numSamples && gain < 1.0f; ++frame) {
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

void XFadedEngine::resumeFade() noexcept {
    FadeState expected = FadeState::held;
    fadeState.compare_exchange_strong(expected, FadeState::waiting);
}

} // namespace orvane
