// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IComponentFactory.h"
#include "binaural/RenderOptions.h"

#include <optional>

namespace orvane::kestrum::core {

/// The one place where the product's concrete classes meet.
class ComponentFactory final : public IComponentFactory {
public:
    explicit ComponentFactory(const RenderOptions& options = {}) noexcept : options(options) {}

    std::unique_ptr<IParameterSet>
    createParameterSet(ISliderValue* headRotationValue,
                       std::unique_ptr<OrvaneIPC::IOrvaneParameterClient> parameterClient) const override;

    std::unique_ptr<IToggleValue> createToggleValue(bool value) const override;
    std::unique_ptr<ISliderValue> createSliderValue(float value) const override;
    std::unique_ptr<ISliderValue> createAtomicSliderValue(float value) const override;
    std::unique_ptr<ISelectorValue> createSelectorValue(std::uint32_t id) const override;
    std::unique_ptr<ISupportedLayouts> createSupportedLayouts() const override;

    std::unique_ptr<IPresenter> createTogglePresenter(IToggleValue* value,
                                                      std::unique_ptr<IToggle> toggle) const override;
    std::unique_ptr<IPresenter> createSliderPresenter(ISliderValue* value,
                                                      std::unique_ptr<ISlider> slider) const override;
    std::unique_ptr<IPresenter>
    createScenePresenter(ISelectorValue* scene, std::unique_ptr<ISelector> selector,
                         std::unique_ptr<ISlider> ambience,
                         std::unique_ptr<IBackgroundImage> background) const override;
    std::unique_ptr<IPresenter>
    createSpeakerSetupPresenter(IBusesLayout* buses, ISelectorValue* speakerSetup,
                                std::unique_ptr<ISelector> selector) const override;
    std::unique_ptr<IPresenter> createHeadRotationPresenter(IHeadRotationAccessor* accessor,
                                                            std::unique_ptr<ITimer> timer,
                                                            ISliderValue* headRotation,
                                                            std::unique_ptr<ISlider> slider) const override;

    std::unique_ptr<IParameterMapper> createSpeakerSetupMapper(ISelectorValue* speakerSetup,
                                                               IParameterSet* parameterSet) const override;
    std::unique_ptr<IParameterMapper> createSceneMapper(ISelectorValue* scene,
                                                        IParameterSet* parameterSet) const override;
    std::unique_ptr<IParameterMapper> createMasterGainMapper(ISliderValue* masterGain, ISelectorValue* scene,
                                                             IParameterSet* parameterSet) const override;
    std::unique_ptr<IParameterMapper> createFocusMapper(ISliderValue* focus, ISelectorValue* scene,
                                                        IParameterSet* parameterSet) const override;
    std::unique_ptr<IParameterMapper> createAmbienceMapper(ISliderValue* ambience, ISelectorValue* scene,
                                                           IParameterSet* parameterSet) const override;
    std::unique_ptr<IEngineManager> createEngineManager(ISelectorValue* speakerSetup,
                                                        ISupportedLayouts* supportedLayouts,
                                                        IParameterSet* parameterSet, IHrir* hrir,
                                                        const std::string& dataDirectory,
                                                        std::function<void()> reloadFinished) const override;

    std::unique_ptr<ISpatialProcessor> createSpeakerProcessor(const SpatialPosition& position,
                                                              IParameterSet* parameterSet, double sampleRate,
                                                              std::uint64_t blockSize,
                                                              IHrir* hrir) const override;
    std::unique_ptr<ISpeakerParameterSetView>
    createSpeakerParameterSetView(const SpatialPosition& position,
                                  ISpeakerParameterSetView* view) const override;
    std::unique_ptr<ISpatialProcessor>
    createBinauralProcessor(double sampleRate, std::uint64_t blockSize, IHrir* hrir,
                            ISpeakerParameterSetView* view,
                            std::unique_ptr<IReloadParameterSet> reloadSet) const override;

    std::unique_ptr<ISpatialProcessor>
    createBinauralReverb(std::uint64_t blockSize, double sampleRate, IReverbParameterView* view,
                         std::unique_ptr<IReverbFilter> reverbFilter,
                         std::optional<float> expectedDecay) const override;

    std::unique_ptr<IGenericBiquadFilter> createLowpassFilter(double sampleRate) const override;
    std::unique_ptr<IGenericBiquadFilter> createRumbleFilter(double sampleRate) const override;
    std::unique_ptr<ISpeakerPropertiesConverter>
    createSpeakerPropertiesConverter(LayoutList& layouts) const override;

    std::unique_ptr<IInPlaceProcessor> createOutputProcessor(double sampleRate, IParameterSet* parameterSet,
                                                             float gainCompensationDb) const override;
    std::unique_ptr<IInPlaceProcessor> createBassReductionProcessor(double sampleRate) const override;
    std::unique_ptr<IInPlaceProcessor> createMasterGainProcessor(const float* gainDb,
                                                                 double sampleRate) const override;
    std::unique_ptr<IInPlaceProcessor>
    createGainCompensationProcessor(float gainCompensationDb) const override;

    std::unique_ptr<ISelectorFallback>
    createSpeakerSetupFallback(ISupportedLayouts* supportedLayouts) const override;
    std::unique_ptr<ISelectorFallback> createSceneFallback() const override;

private:
    RenderOptions options;
};

} // namespace orvane::kestrum::core
