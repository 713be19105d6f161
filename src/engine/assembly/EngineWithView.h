// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IEngine.h"
#include "base/SampleBuffer.h"
#include "engine/Engine.h"
#include "engine/IParameterFreeze.h"
#include "parameters/core/EngineParameterView.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

namespace orvane::kestrum::core {

/// An engine with the parameter view that all its parts read.
///
/// Thread  as IEngine.
class EngineWithView final : public orvane::IEngine, public IParameterFreeze {
public:
    /// @param view, engine never null; the engine's parts borrow the view.
    /// @param beforeFirstBlock may be empty; runs once, on the audio thread.
    EngineWithView(std::unique_ptr<EngineParameterView> view, std::unique_ptr<Engine> engine,
                   std::function<void()> beforeFirstBlock) noexcept
        : view(std::move(view)), engine(std::move(engine)), beforeFirstBlock(std::move(beforeFirstBlock)) {}

    void process(const SampleBuffer& input, SampleBuffer& output) ORVANE_REALTIME override {
        if (!std::exchange(started, true) && beforeFirstBlock) {
            beforeFirstBlock();
            engine->settleOutputGain();
        }
        engine->process(input, output);
    }
    std::uint64_t speakerCount() const noexcept override { return engine->speakerCount(); }
    void freezeParameters() noexcept ORVANE_REALTIME override { view->freeze(); }

private:
    std::unique_ptr<EngineParameterView> view; ///< Borrowed by the engine, so it dies after it.
    std::unique_ptr<Engine> engine;
    std::function<void()> beforeFirstBlock;
    bool started = false;
};

} // namespace orvane::kestrum::core
