// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IInPlaceProcessor.h"
#include "base/ISpatialProcessor.h"
#include "core/IBackgroundImage.h"
#include "core/IPresenter.h"
#include "core/ISelector.h"
#include "core/ISlider.h"
#include "core/ITimer.h"
#include "core/IToggle.h"
#include "engine/IEngineManager.h"
#include "engine/assembly/ComponentFactory.h"
#include "filters/IGenericBiquadFilter.h"
#include "ipc/IOrvaneParameterClient.h"
#include "parameters/IReloadParameterSet.h"
#include "parameters/core/IParameterMapper.h"
#include "parameters/core/IParameterSet.h"
#include "parameters/core/ISelectorFallback.h"
#include "parameters/core/ISelectorValue.h"
#include "parameters/core/ISliderValue.h"
#include "parameters/core/ISpeakerPropertiesConverter.h"
#include "parameters/core/IToggleValue.h"
#include "room/IReverbFilter.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace test {

namespace core = orvane::kestrum::core;

/// Makes what the product's factory makes, apart from the engine manager, which comes from the test.
class TestComponentFactory final : public core::IComponentFactory {
public:
    /// Called in place of createEngineManager(), with what the processor wants to have run at each crossfade.
    using MakeManager = std::function<std::unique_ptr<orvane::IEngineManager>(
        core::IParameterSet* parameterSet, std::function<void()> reloadFinished)>;

    explicit TestComponentFactory(MakeManager makeManager) : makeManager(std::move(makeManager)) {}

    std::unique_ptr<orvane::IEngineManager>
    createEngineManager(core::ISelectorValue*, core::ISupportedLayouts*, core::IParameterSet* parameterSet,
                        orvane::IHrir*, const std::string&,
                        std::function<void()> reloadFinished) const override {
        return makeManager(parameterSet, std::move(reloadFinished));
    }

    std::unique_ptr<core::IParameterSet>
    createParameterSet(core::ISliderValue* headRotation,
                       std::unique_ptr<OrvaneIPC::IOrvaneParameterClient> client) const override {
        return product.createParameterSet(headRotation, std::move(client));
    }
    std::unique_ptr<core::IToggleValue> createToggleValue(bool value) const override {
        return product.createToggleValue(value);
    }
    std::unique_ptr<core::ISliderValue> createSliderValue(float value) const override {
        return product.createSliderValue(value);
    }
    std::unique_ptr<core::ISliderValue> createAtomicSliderValue(float value) const override {
        return product.createAtomicSliderValue(value);
    }
    std::unique_ptr<core::ISelectorValue> createSelectorValue(std::uint32_t id) const override {
        return product.createSelectorValue(id);
    }
    std::unique_ptr<core::ISupportedLayouts> createSupportedLayouts() const override {
        return product.createSupportedLayouts();
    }
    std::unique_ptr<core::IPresenter>
    createTogglePresenter(core::IToggleValue* value, std::unique_ptr<core::IToggle> toggle) const override {
        return product.createTogglePresenter(value, std::move(toggle));
    }
    std::unique_ptr<core::IPresenter>
    createSliderPresenter(core::ISliderValue* value, std::unique_ptr<core::ISlider> slider) const override {
        return product.createSliderPresenter(value, std::move(slider));
    }
    std::unique_ptr<core::IPresenter>
    createScenePresenter(core::ISelectorValue* scene, std::unique_ptr<core::ISelector> selector,
                         std::unique_ptr<core::ISlider> ambience,
                         std::unique_ptr<core::IBackgroundImage> background) const override {
        return product.createScenePresenter(scene, std::move(selector), std::move(ambience),
                                            std::move(background));
    }
    std::unique_ptr<core::IPresenter>
    createSpeakerSetupPresenter(core::IBusesLayout* buses, core::ISelectorValue* setup,
                                std::unique_ptr<core::ISelector> selector) const override {
        return product.createSpeakerSetupPresenter(buses, setup, std::move(selector));
    }
    std::unique_ptr<core::IPresenter>
    createHeadRotationPresenter(core::IHeadRotationAccessor* accessor, std::unique_ptr<core::ITimer> timer,
                                core::ISliderValue* value,
                                std::unique_ptr<core::ISlider> slider) const override {
        return product.createHeadRotationPresenter(accessor, std::move(timer), value, std::move(slider));
    }
    std::unique_ptr<core::IParameterMapper>
    createSpeakerSetupMapper(core::ISelectorValue* setup, core::IParameterSet* parameterSet) const override {
        return product.createSpeakerSetupMapper(setup, parameterSet);
    }
    std::unique_ptr<core::IParameterMapper>
    createSceneMapper(core::ISelectorValue* scene, core::IParameterSet* parameterSet) const override {
        return product.createSceneMapper(scene, parameterSet);
    }
    std::unique_ptr<core::IParameterMapper>
    createMasterGainMapper(core::ISliderValue* gain, core::ISelectorValue* scene,
                           core::IParameterSet* parameterSet) const override {
        return product.createMasterGainMapper(gain, scene, parameterSet);
    }
    std::unique_ptr<core::IParameterMapper>
    createFocusMapper(core::ISliderValue* focus, core::ISelectorValue* scene,
                      core::IParameterSet* parameterSet) const override {
        return product.createFocusMapper(focus, scene, parameterSet);
    }
    std::unique_ptr<core::IParameterMapper>
    createAmbienceMapper(core::ISliderValue* ambience, core::ISelectorValue* scene,
                         core::IParameterSet* parameterSet) const override {
        return product.createAmbienceMapper(ambience, scene, parameterSet);
    }
    std::unique_ptr<orvane::ISpatialProcessor>
    createSpeakerProcessor(const orvane::SpatialPosition& position, core::IParameterSet* parameterSet,
                           double sampleRate, std::uint64_t blockSize, orvane::IHrir* hrir) const override {
        return product.createSpeakerProcessor(position, parameterSet, sampleRate, blockSize, hrir);
    }
    std::unique_ptr<core::ISpeakerParameterSetView>
    createSpeakerParameterSetView(const orvane::SpatialPosition& position,
                                  core::ISpeakerParameterSetView* view) const override {
        return product.createSpeakerParameterSetView(position, view);
    }
    std::unique_ptr<orvane::ISpatialProcessor>
    createBinauralProcessor(double sampleRate, std::uint64_t blockSize, orvane::IHrir* hrir,
                            core::ISpeakerParameterSetView* view,
                            std::unique_ptr<orvane::IReloadParameterSet> reloadSet) const override {
        return product.createBinauralProcessor(sampleRate, blockSize, hrir, view, std::move(reloadSet));
    }
    std::unique_ptr<orvane::ISpatialProcessor>
    createBinauralReverb(std::uint64_t blockSize, double sampleRate, core::IReverbParameterView* view,
                         std::unique_ptr<orvane::IReverbFilter> reverbFilter,
                         std::optional<float> expectedDecay) const override {
        return product.createBinauralReverb(blockSize, sampleRate, view, std::move(reverbFilter),
                                            expectedDecay);
    }
    std::unique_ptr<orvane::IGenericBiquadFilter> createLowpassFilter(double sampleRate) const override {
        return product.createLowpassFilter(sampleRate);
    }
    std::unique_ptr<orvane::IGenericBiquadFilter> createRumbleFilter(double sampleRate) const override {
        return product.createRumbleFilter(sampleRate);
    }
    std::unique_ptr<core::ISpeakerPropertiesConverter>
    createSpeakerPropertiesConverter(LayoutList& layouts) const override {
        return product.createSpeakerPropertiesConverter(layouts);
    }
    std::unique_ptr<orvane::IInPlaceProcessor>
    createOutputProcessor(double sampleRate, core::IParameterSet* parameterSet,
                          float gainCompensationDb) const override {
        return product.createOutputProcessor(sampleRate, parameterSet, gainCompensationDb);
    }
    std::unique_ptr<orvane::IInPlaceProcessor>
    createBassReductionProcessor(double sampleRate) const override {
        return product.createBassReductionProcessor(sampleRate);
    }
    std::unique_ptr<orvane::IInPlaceProcessor> createMasterGainProcessor(const float* gainDb,
                                                                         double sampleRate) const override {
        return product.createMasterGainProcessor(gainDb, sampleRate);
    }
    std::unique_ptr<orvane::IInPlaceProcessor>
    createGainCompensationProcessor(float gainCompensationDb) const override {
        return product.createGainCompensationProcessor(gainCompensationDb);
    }
    std::unique_ptr<core::ISelectorFallback>
    createSpeakerSetupFallback(core::ISupportedLayouts* layouts) const override {
        return product.createSpeakerSetupFallback(layouts);
    }
    std::unique_ptr<core::ISelectorFallback> createSceneFallback() const override {
        return product.createSceneFallback();
    }

private:
    core::ComponentFactory product;
    MakeManager makeManager;
};

} // namespace test
