// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/assembly/ComponentFactory.h"

#include "binaural/BinauralComponentFactory.h"
#include "binaural/BinauralProcessor.h"
#include "binaural/ClarifiedHrir.h"
#include "binaural/ConvolutionFactory.h"
#include "binaural/ReverbConvolutionFactory.h"
#include "binaural/SpeakerBinauralProcessorBuilder.h"
#include "core/ScenePresenter.h"
#include "core/SliderPresenter.h"
#include "core/SpeakerSetupPresenter.h"
#include "core/TogglePresenter.h"
#include "engine/BassReductionProcessor.h"
#include "engine/EngineManager.h"
#include "engine/GainCompensationProcessor.h"
#include "engine/MasterGainProcessor.h"
#include "engine/OutputProcessor.h"
#include "engine/SpeakerProcessor.h"
#include "engine/assembly/EngineBuilder.h"
#include "engine/assembly/EngineFactory.h"
#include "filters/BiquadFilterFactory.h"
#include "filters/GenericBiquadFilter.h"
#include "filters/RumbleFree.h"
#include "ipc/IOrvaneParameterClient.h"
#include "parameters/ParameterSet.h"
#include "parameters/core/AmbienceMapper.h"
#include "parameters/core/FocusMapper.h"
#include "parameters/core/MasterGainMapper.h"
#include "parameters/core/ParameterSet.h"
#include "parameters/core/SceneFallback.h"
#include "parameters/core/SceneMapper.h"
#include "parameters/core/SelectorValue.h"
#include "parameters/core/SliderValue.h"
#include "parameters/core/SpeakerParameterSetView.h"
#include "parameters/core/SpeakerPropertiesConverter.h"
#include "parameters/core/SpeakerSetupFallback.h"
#include "parameters/core/SpeakerSetupMapper.h"
#include "parameters/core/SpeakerViewSnapshot.h"
#include "parameters/core/SupportedLayouts.h"
#include "parameters/core/ToggleValue.h"
#include "parameters/zmtl/HardValue.h"
#include "room/BinauralReverb.h"
#include "room/ReverbFilterFactory.h"
#include "room/SpeakerBinauralReverbBuilder.h"
#include "tracking/HeadRotationPresenter.h"
#include "tracking/HeadRotationSupported.h"

#include <atomic>
#include <utility>

namespace orvane::kestrum::core {

std::unique_ptr<IParameterSet> ComponentFactory::createParameterSet(
    ISliderValue* headRotationValue,
    std::unique_ptr<OrvaneIPC::IOrvaneParameterClient> parameterClient) const {
    return std::make_unique<HeadRotationSupported<ParameterSet>>(
        std::make_unique<orvane::ParameterSet>(), headRotationValue, std::move(parameterClient));
}

std::unique_ptr<IToggleValue> ComponentFactory::createToggleValue(bool value) const {
    return std::make_unique<ToggleValue>(value);
}

std::unique_ptr<ISliderValue> ComponentFactory::createSliderValue(float value) const {
    return std::make_unique<internal::SliderValue<float>>(value);
}

std::unique_ptr<ISliderValue> ComponentFactory::createAtomicSliderValue(float value) const {
    return std::make_unique<internal::SliderValue<std::atomic<float>>>(value);
}

std::unique_ptr<ISelectorValue> ComponentFactory::createSelectorValue(std::uint32_t id) const {
    return std::make_unique<SelectorValue>(id);
}

std::unique_ptr<ISupportedLayouts> ComponentFactory::createSupportedLayouts() const {
    return std::make_unique<SupportedLayouts>(*this);
}

std::unique_ptr<IPresenter> ComponentFactory::createTogglePresenter(IToggleValue* value,
                                                                    std::unique_ptr<IToggle> toggle) const {
    return std::make_unique<TogglePresenter>(value, std::move(toggle));
}

std::unique_ptr<IPresenter> ComponentFactory::createSliderPresenter(ISliderValue* value,
                                                                    std::unique_ptr<ISlider> slider) const {
    return std::make_unique<SliderPresenter>(value, std::move(slider));
}

std::unique_ptr<IPresenter>
ComponentFactory::createScenePresenter(ISelectorValue* scene, std::unique_ptr<ISelector> selector,
                                       std::unique_ptr<ISlider> ambience,
                                       std::unique_ptr<IBackgroundImage> background) const {
    return std::make_unique<ScenePresenter>(scene, std::move(selector), std::move(ambience),
                                            std::move(background));
}

std::unique_ptr<IPresenter>
ComponentFactory::createSpeakerSetupPresenter(IBusesLayout* buses, ISelectorValue* speakerSetup,
                                              std::unique_ptr<ISelector> selector) const {
    return std::make_unique<SpeakerSetupPresenter>(buses, speakerSetup, std::move(selector));
}

std::unique_ptr<IPresenter>
ComponentFactory::createHeadRotationPresenter(IHeadRotationAccessor* accessor, std::unique_ptr<ITimer> timer,
                                              ISliderValue* headRotation,
                                              std::unique_ptr<ISlider> slider) const {
    return std::make_unique<HeadRotationPresenter>(accessor, std::move(timer), headRotation,
                                                   std::move(slider));
}

std::unique_ptr<IParameterMapper>
ComponentFactory::createSpeakerSetupMapper(ISelectorValue* speakerSetup, IParameterSet* parameterSet) const {
    return std::make_unique<SpeakerSetupMapper>(speakerSetup, parameterSet);
}

std::unique_ptr<IParameterMapper> ComponentFactory::createSceneMapper(ISelectorValue* scene,
                                                                      IParameterSet* parameterSet) const {
    return std::make_unique<SceneMapper>(scene, parameterSet);
}

std::unique_ptr<IParameterMapper>
ComponentFactory::createMasterGainMapper(ISliderValue* masterGain, ISelectorValue* scene,
                                         IParameterSet* parameterSet) const {
    return std::make_unique<MasterGainMapper>(masterGain, scene, parameterSet);
}

std::unique_ptr<IParameterMapper> ComponentFactory::createFocusMapper(ISliderValue* focus,
                                                                      ISelectorValue* scene,
                                                                      IParameterSet* parameterSet) const {
    return std::make_unique<FocusMapper>(focus, scene, parameterSet);
}

std::unique_ptr<IParameterMapper> ComponentFactory::createAmbienceMapper(ISliderValue* ambience,
                                                                         ISelectorValue* scene,
                                                                         IParameterSet* parameterSet) const {
    return std::make_unique<AmbienceMapper>(ambience, scene, parameterSet);
}

std::unique_ptr<IEngineManager> ComponentFactory::createEngineManager(
    ISelectorValue* speakerSetup, ISupportedLayouts* supportedLayouts, IParameterSet* parameterSet,
    IHrir* hrir, const std::string& dataDirectory, std::function<void()> reloadFinished) const {
    auto engineFactory =
        std::make_unique<EngineFactory>(speakerSetup, supportedLayouts, this, parameterSet, hrir,
                                        dataDirectory, std::make_unique<EngineBuilder>(),
                                        std::make_unique<ReverbFilterFactory>(), std::move(reloadFinished));
    return std::make_unique<EngineManager>(std::move(engineFactory), parameterSet);
}

std::unique_ptr<ISpatialProcessor>
ComponentFactory::createSpeakerProcessor(const SpatialPosition& position, IParameterSet* parameterSet,
                                         double sampleRate, std::uint64_t blockSize, IHrir* hrir) const {
    return std::make_unique<SpeakerProcessor>(position, parameterSet, sampleRate, blockSize, hrir, this);
}

std::unique_ptr<ISpeakerParameterSetView>
ComponentFactory::createSpeakerParameterSetView(const SpatialPosition& position,
                                                ISpeakerParameterSetView* view) const {
    return std::make_unique<SpeakerParameterSetView>(position, view);
}

std::unique_ptr<ISpatialProcessor>
ComponentFactory::createBinauralProcessor(double sampleRate, std::uint64_t blockSize, IHrir* hrir,
                                          ISpeakerParameterSetView* view,
                                          std::unique_ptr<IReloadParameterSet> reloadSet) const {
    const bool hardSwitch = reloadSet->watchSource();
    std::unique_ptr<SpeakerViewSnapshot> snapshot;
    if (options.path == RenderPath::fast) {
        const bool simple = reloadSet->getOutputFormat()->isPlainTwoChannel();
        ClarifiedHrir(hrir, simple, BinauralComponentFactory(options)).fill(view->getClarity());
        snapshot = std::make_unique<SpeakerViewSnapshot>(view, hrir);
        view = snapshot.get();
    }
    const BinauralProcessorBuilder builder(static_cast<float>(sampleRate), blockSize, view,
                                           std::move(reloadSet),
                                           std::make_unique<BinauralComponentFactory>(options),
                                           std::make_unique<ConvolutionFactory>(options), hrir, this);
    return std::make_unique<BinauralProcessor>(blockSize, hardSwitch, view, builder, options.path,
                                               std::move(snapshot));
}

std::unique_ptr<ISpatialProcessor>
ComponentFactory::createBinauralReverb(std::uint64_t blockSize, double sampleRate, IReverbParameterView* view,
                                       std::unique_ptr<IReverbFilter> reverbFilter,
                                       std::optional<float> expectedDecay) const {
    const BinauralReverbBuilder builder(sampleRate, blockSize, reverbFilter->partitionCount(),
                                        reverbFilter->bandLimitFactor(), view, this,
                                        std::make_unique<ReverbConvolutionFactory>(options));
    return std::make_unique<BinauralReverb>(blockSize, view, std::move(reverbFilter), builder,
                                            reverbDistanceLaw,
                                            options.path == RenderPath::fast ? expectedDecay : std::nullopt);
}

std::unique_ptr<IGenericBiquadFilter> ComponentFactory::createLowpassFilter(double sampleRate) const {
    return std::make_unique<GenericBiquadFilter<zmtl::HardValue<float>, LowpassBiquad>>(
        static_cast<float>(sampleRate));
}

std::unique_ptr<IGenericBiquadFilter> ComponentFactory::createRumbleFilter(double sampleRate) const {
    return std::make_unique<RumbleFree<GenericBiquadFilter<zmtl::HardValue<float>, HighpassBiquad>>>(
        static_cast<float>(sampleRate));
}

std::unique_ptr<ISpeakerPropertiesConverter>
ComponentFactory::createSpeakerPropertiesConverter(LayoutList& layouts) const {
    return std::make_unique<SpeakerPropertiesConverter>(layouts);
}

std::unique_ptr<IInPlaceProcessor> ComponentFactory::createOutputProcessor(double sampleRate,
                                                                           IParameterSet* parameterSet,
                                                                           float gainCompensationDb) const {
    return std::make_unique<OutputProcessor>(sampleRate, parameterSet, gainCompensationDb, this);
}

std::unique_ptr<IInPlaceProcessor> ComponentFactory::createBassReductionProcessor(double sampleRate) const {
    BiquadFilterFactory filterFactory;
    return std::make_unique<BassReductionProcessor>(sampleRate, &filterFactory);
}

std::unique_ptr<IInPlaceProcessor> ComponentFactory::createMasterGainProcessor(const float* gainDb,
                                                                               double sampleRate) const {
    return std::make_unique<MasterGainProcessor>(gainDb, sampleRate);
}

std::unique_ptr<IInPlaceProcessor>
ComponentFactory::createGainCompensationProcessor(float gainCompensationDb) const {
    return std::make_unique<GainCompensationProcessor>(gainCompensationDb);
}

std::unique_ptr<ISelectorFallback>
ComponentFactory::createSpeakerSetupFallback(ISupportedLayouts* supportedLayouts) const {
    return std::make_unique<SpeakerSetupFallback>(supportedLayouts);
}

std::unique_ptr<ISelectorFallback> ComponentFactory::createSceneFallback() const {
    return std::make_unique<SceneFallback>();
}

} // namespace orvane::kestrum::core
