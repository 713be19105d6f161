// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/assembly/EngineFactory.h"

#include "engine/Engine.h"
#include "engine/XFadedEngine.h"
#include "engine/assembly/EngineWithView.h"
#include "engine/fades/Fade.h"
#include "parameters/core/GainCompensation.h"
#include "parameters/core/ISelectorValue.h"
#include "parameters/zmtl/Sleep.h"
#include "room/ReverbProcessor.h"

#include <condition_variable>
#include <utility>

namespace orvane::kestrum::core {

namespace {

constexpr float fadeMilliseconds = 10.0f;

} // namespace

EngineFactory::EngineFactory(ISelectorValue* speakerSetup, ISupportedLayouts* supportedLayouts,
                             const IComponentFactory* componentFactory, IParameterSet* parameterSet,
                             IHrir* hrir, std::string dataDirectory,
                             std::unique_ptr<IEngineBuilder> engineBuilder,
                             std::unique_ptr<IReverbFilterFactory> reverbFilterFactory,
                             std::function<void()> reloadFinished)
    : speakerSetupValue(speakerSetup),
      supportedLayouts(supportedLayouts),
      componentFactory(componentFactory),
      parameterSet(parameterSet),
      hrir(hrir),
      dataDirectory(std::move(dataDirectory)),
      engineBuilder(std::move(engineBuilder)),
      reverbFilterFactory(std::move(reverbFilterFactory)),
      reloadFinished(std::move(reloadFinished)) {}

std::unique_ptr<orvane::IEngine> EngineFactory::createEngine(std::uint64_t blockSize, double sampleRate) {
    return createEngine(blockSize, sampleRate, nullptr);
}

std::unique_ptr<orvane::IEngine> EngineFactory::createEngine(std::uint64_t blockSize, double sampleRate,
                                                             std::function<void()> beforeFirstBlock) {
    auto view = std::make_unique<EngineParameterView>(parameterSet);
    auto reverb = std::make_unique<ReverbProcessor>(sampleRate, blockSize, *reverbFilterFactory,
                                                    *componentFactory, view.get(), dataDirectory);
    const ISupportedLayouts::Properties properties = supportedLayouts->get(speakerSetupValue->getValue());
    auto inputFade = std::make_unique<Fade>(
        fadeMilliseconds, static_cast<float>(static_cast<std::int32_t>(sampleRate)), 0.0f, 1.0f);
    auto engine = std::make_unique<Engine>(sampleRate, blockSize, properties.channelCount,
                                           gainCompensationDb(properties), view.get(), hrir, componentFactory,
                                           std::move(reverb), std::move(inputFade));
    return std::make_unique<EngineWithView>(
        std::move(view), engineBuilder->build(properties, std::move(engine)), std::move(beforeFirstBlock));
}

std::unique_ptr<orvane::IEngine>
EngineFactory::createCrossfadedEngine(std::shared_ptr<orvane::IEngine> oldEngine, std::uint64_t blockSize,
                                      double sampleRate) {
    // The crossfade has frozen the old engine's values by the new one's first block. That block is the first
    // one heard, so it has to have the new Scene's values already, not only those that follow the fade's start.
    std::unique_ptr<orvane::IEngine> newEngine =
        createEngine(blockSize, sampleRate, oldEngine != nullptr ? reloadFinished : nullptr);
    auto sleep = std::make_unique<zmtl::internal::Sleep<std::condition_variable_any>>();
    return std::make_unique<XFadedEngine>(std::move(oldEngine), std::move(newEngine), blockSize, sampleRate,
                                          fadeMilliseconds, std::move(sleep), reloadFinished);
}

} // namespace orvane::kestrum::core
