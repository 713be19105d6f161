// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IEngine.h"
#include "base/SampleBuffer.h"
#include "engine/EngineHandover.h"
#include "engine/IParameterFreeze.h"
#include "engine/IPendingFade.h"
#include "parameters/zmtl/ISleep.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <future>
#include <memory>

namespace orvane {

/// Two whole engines, the old one fading out while the new one fades in, both fed with the same blocks.
///
///     input --+--> old engine --> oldOutput --* (1 - phase)--+
///             |                                              (+)--> output
///             +--> new engine ----------------* phase -------+
///
/// A new engine's first internal block is the silence of its latency. The fade begins behind it, at the sample
/// where the new engine's first sound arrives, wherever in a host block that is; until then the old engine
/// alone is heard. From the first block on the old engine goes on with the parameter values that it has.
///
/// When the fade is over, a task of its own destroys the old engine; the wrapper stays as a thin shell around
/// the new one. The fade is linear in amplitude. There is no way back.
///
/// Thread  constructed and destroyed on building threads; process() on the audio thread only, wait-free.
class XFadedEngine final : public IEngine, public IPendingFade, public IParameterFreeze {
public:
    /// Units   fadeMilliseconds; sampleRate in hertz; blockSize in samples: the internal block of both
    ///         engines, which is the new one's latency and the longest host block.
    /// @param oldEngine may be empty: then the new engine is heard at full level at once.
    /// @param fadeStarted runs once, on the audio thread, in the host block in which the fade begins.
    XFadedEngine(std::shared_ptr<IEngine> oldEngine, std::unique_ptr<IEngine> newEngine,
                 std::uint64_t blockSize, double sampleRate, float fadeMilliseconds,
                 std::unique_ptr<zmtl::ISleep> sleep, std::function<void()> fadeStarted);
    ~XFadedEngine() override;
    XFadedEngine(const XFadedEngine&) = delete;
    XFadedEngine& operator=(const XFadedEngine&) = delete;

    /// Errors  std::bad_function_call in the host block in which the fade begins when `fadeStarted` is empty.
    void process(const SampleBuffer& input, SampleBuffer& output) ORVANE_REALTIME override;
    std::uint64_t speakerCount() const noexcept override;

    std::shared_ptr<IEngine> holdFade() noexcept override;
    void resumeFade() noexcept override;

    void freezeParameters() noexcept ORVANE_REALTIME override;

private:
    enum class FadeState { waiting, held, begun };

    std::uint64_t beginFade(std::uint64_t blockFrames) ORVANE_REALTIME;
    void mix(SampleBuffer& output, SampleBuffer& old, std::uint64_t fadeFrom) noexcept ORVANE_REALTIME;
    void releaseOldEngine(float fadeMilliseconds);

    EngineHandover oldEngine;
    IParameterFreeze* oldParameters; ///< The old engine's, as long as that lives; null when it has none.
    /// [max(2, old speakers)][blockSize]; the release task's once phase has reached 1.
    SampleBuffer oldOutput;
    std::unique_ptr<IEngine> newEngine;
    IParameterFreeze* newParameters; ///< The new engine's; null when it has none.
    std::uint64_t framesToNewSound;  ///< What is left of the new engine's latency.
    float step;                      ///< Increment of `phase` per sample.
    std::atomic<float> phase; ///< Gain of the new engine; starts at `step`, so no sample is wholly old.
    std::atomic<FadeState> fadeState{FadeState::waiting};
    std::unique_ptr<zmtl::ISleep> sleep;
    std::atomic<bool> running{true};
    std::function<void()> fadeStarted;
    std::future<void> releaseTask;
};

} // namespace orvane
