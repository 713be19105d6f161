// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IComponentFactory.h"
#include "base/IHrir.h"
#include "engine/IEngineBuilder.h"
#include "engine/IEngineFactory.h"
#include "parameters/core/IParameterSet.h"
#include "room/IReverbFilterFactory.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace orvane::kestrum::core {

/// Builds engines for the layout and the structure that are selected at the moment of building.
///
/// Thread  setup thread or the manager's background task; reads atomics and immutable tables only.
/// Errors  std::invalid_argument for a layout outside the table; whatever the parts throw.
class EngineFactory final : public orvane::IEngineFactory {
public:
    /// Raw pointers are borrowed.
    /// @param reloadFinished runs on the audio thread: before a crossfaded engine's first block, and when its
    ///        fade begins.
    EngineFactory(ISelectorValue* speakerSetup, ISupportedLayouts* supportedLayouts,
                  const IComponentFactory* componentFactory, IParameterSet* parameterSet, IHrir* hrir,
                  std::string dataDirectory, std::unique_ptr<IEngineBuilder> engineBuilder,
                  std::unique_ptr<IReverbFilterFactory> reverbFilterFactory,
                  std::function<void()> reloadFinished);

    std::unique_ptr<orvane::IEngine> createEngine(std::uint64_t blockSize, double sampleRate) override;
    std::unique_ptr<orvane::IEngine> createCrossfadedEngine(std::shared_ptr<orvane::IEngine> oldEngine,
                                                            std::uint64_t blockSize,
                                                            double sampleRate) override;

private:
    std::unique_ptr<orvane::IEngine> createEngine(std::uint64_t blockSize, double sampleRate,
                                                  std::function<void()> beforeFirstBlock);

    ISelectorValue* speakerSetupValue;
    ISupportedLayouts* supportedLayouts;
    const IComponentFactory* componentFactory;
    IParameterSet* parameterSet;
    IHrir* hrir;
    std::string dataDirectory; ///< Where a room's late reverb is read from.
    std::unique_ptr<IEngineBuilder> engineBuilder;
    std::unique_ptr<IReverbFilterFactory> reverbFilterFactory;
    std::function<void()> reloadFinished;
};

} // namespace orvane::kestrum::core
