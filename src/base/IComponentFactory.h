// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ISupportedLayouts.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace OrvaneIPC {
class IOrvaneParameterClient;
}

namespace orvane {
class IEngineManager;
class IGenericBiquadFilter;
class IHrir;
class IInPlaceProcessor;
class IReloadParameterSet;
class IReverbFilter;
class ISpatialProcessor;
} // namespace orvane

namespace orvane::kestrum::core {

class IBackgroundImage;
class IBusesLayout;
class IHeadRotationAccessor;
class IParameterMapper;
class IParameterSet;
class IPresenter;
class IReverbParameterView;
class ISelector;
class ISelectorFallback;
class ISelectorValue;
class ISlider;
class ISliderValue;
class ISpeakerParameterSetView;
class ISpeakerPropertiesConverter;
class ITimer;
class IToggle;
class IToggleValue;

/// Makes every object of the product. Stateless: one instance serves every thread.
///
/// Raw pointers are borrowed, never null, and have to outlive what is made. What can fail throws here; an
/// object that has been made does not fail later.
class IComponentFactory {
public:
    using LayoutList = std::vector<ISupportedLayouts::Properties>;

    virtual ~IComponentFactory() = default;

    virtual std::unique_ptr<IParameterSet>
    createParameterSet(ISliderValue* headRotationValue,
                       std::unique_ptr<OrvaneIPC::IOrvaneParameterClient> parameterClient) const = 0;

    virtual std::unique_ptr<IToggleValue> createToggleValue(bool value) const = 0;
    virtual std::unique_ptr<ISliderValue> createSliderValue(float value) const = 0;
    virtual std::unique_ptr<ISliderValue> createAtomicSliderValue(float value) const = 0;
    virtual std::unique_ptr<ISelectorValue> createSelectorValue(std::uint32_t id) const = 0;
    virtual std::unique_ptr<ISupportedLayouts> createSupportedLayouts() const = 0;

    // Presenters are made on the message thread.
    virtual std::unique_ptr<IPresenter> createTogglePresenter(IToggleValue* value,
                                                              std::unique_ptr<IToggle> toggle) const = 0;
    virtual std::unique_ptr<IPresenter> createSliderPresenter(ISliderValue* value,
                                                              std::unique_ptr<ISlider> slider) const = 0;
    virtual std::unique_ptr<IPresenter>
    createScenePresenter(ISelectorValue* scene, std::unique_ptr<ISelector> selector,
                         std::unique_ptr<ISlider> ambience,
                         std::unique_ptr<IBackgroundImage> background) const = 0;
    virtual std::unique_ptr<IPresenter>
    createSpeakerSetupPresenter(IBusesLayout* buses, ISelectorValue* speakerSetup,
                                std::unique_ptr<ISelector> selector) const = 0;
    virtual std::unique_ptr<IPresenter>
    createHeadRotationPresenter(IHeadRotationAccessor* accessor, std::unique_ptr<ITimer> timer,
                                ISliderValue* headRotation, std::unique_ptr<ISlider> slider) const = 0;

    virtual std::unique_ptr<IParameterMapper> createSpeakerSetupMapper(ISelectorValue* speakerSetup,
                                                                       IParameterSet* parameterSet) const = 0;
    virtual std::unique_ptr<IParameterMapper> createSceneMapper(ISelectorValue* scene,
                                                                IParameterSet* parameterSet) const = 0;
    virtual std::unique_ptr<IParameterMapper> createMasterGainMapper(ISliderValue* masterGain,
                                                                     ISelectorValue* scene,
                                                                     IParameterSet* parameterSet) const = 0;
    virtual std::unique_ptr<IParameterMapper> createFocusMapper(ISliderValue* focus, ISelectorValue* scene,
                                                                IParameterSet* parameterSet) const = 0;
    virtual std::unique_ptr<IParameterMapper> createAmbienceMapper(ISliderValue* ambience,
                                                                   ISelectorValue* scene,
                                                                   IParameterSet* parameterSet) const = 0;

    /// @param reloadFinished runs on the audio thread: before a crossfaded engine's first block, and when its
    ///        fade begins.
    virtual std::unique_ptr<IEngineManager>
    createEngineManager(ISelectorValue* speakerSetup, ISupportedLayouts* supportedLayouts,
                        IParameterSet* parameterSet, IHrir* hrir, const std::string& dataDirectory,
                        std::function<void()> reloadFinished) const = 0;

    virtual std::unique_ptr<ISpatialProcessor>
    createSpeakerProcessor(const SpatialPosition& position, IParameterSet* parameterSet, double sampleRate,
                           std::uint64_t blockSize, IHrir* hrir) const = 0;
    virtual std::unique_ptr<ISpeakerParameterSetView>
    createSpeakerParameterSetView(const SpatialPosition& position, ISpeakerParameterSetView* view) const = 0;
    virtual std::unique_ptr<ISpatialProcessor>
    createBinauralProcessor(double sampleRate, std::uint64_t blockSize, IHrir* hrir,
                            ISpeakerParameterSetView* view,
                            std::unique_ptr<IReloadParameterSet> reloadSet) const = 0;

    /// @param expectedDecay percent that the first block is likely to find, if any; may be wrong.
    virtual std::unique_ptr<ISpatialProcessor>
    createBinauralReverb(std::uint64_t blockSize, double sampleRate, IReverbParameterView* view,
                         std::unique_ptr<IReverbFilter> reverbFilter,
                         std::optional<float> expectedDecay) const = 0;

    virtual std::unique_ptr<IGenericBiquadFilter> createLowpassFilter(double sampleRate) const = 0;
    virtual std::unique_ptr<IGenericBiquadFilter> createRumbleFilter(double sampleRate) const = 0;

    /// @param layouts borrowed list that the converter appends to.
    virtual std::unique_ptr<ISpeakerPropertiesConverter>
    createSpeakerPropertiesConverter(LayoutList& layouts) const = 0;

    virtual std::unique_ptr<IInPlaceProcessor>
    createOutputProcessor(double sampleRate, IParameterSet* parameterSet, float gainCompensationDb) const = 0;
    virtual std::unique_ptr<IInPlaceProcessor> createBassReductionProcessor(double sampleRate) const = 0;

    /// @param gainDb borrowed, read at every block.
    virtual std::unique_ptr<IInPlaceProcessor> createMasterGainProcessor(const float* gainDb,
                                                                         double sampleRate) const = 0;
    virtual std::unique_ptr<IInPlaceProcessor>
    createGainCompensationProcessor(float gainCompensationDb) const = 0;

    virtual std::unique_ptr<ISelectorFallback>
    createSpeakerSetupFallback(ISupportedLayouts* supportedLayouts) const = 0;
    virtual std::unique_ptr<ISelectorFallback> createSceneFallback() const = 0;
};

} // namespace orvane::kestrum::core
