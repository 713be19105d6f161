// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IComponentFactory.h"
#include "core/IBackgroundImage.h"
#include "core/IPresenter.h"
#include "core/ISelector.h"
#include "core/ISlider.h"
#include "core/ITimer.h"
#include "core/IToggle.h"
#include "parameters/core/SpeakerPropertiesConverter.h"
#include "room/IReverbFilter.h"

#include <optional>
#include <stdexcept>

namespace test {

/// A factory that makes what the layout table asks for, and refuses everything else. Tests of
/// other objects derive from it and make those.
class StubComponentFactory : public orvane::kestrum::core::IComponentFactory {
    using Hrir = orvane::IHrir;
    using InPlace = orvane::IInPlaceProcessor;
    using Layouts = orvane::kestrum::core::ISupportedLayouts;
    using Mapper = orvane::kestrum::core::IParameterMapper;
    using Presenter = orvane::kestrum::core::IPresenter;
    using SelectorWidget = orvane::kestrum::core::ISelector;
    using SliderWidget = orvane::kestrum::core::ISlider;
    using Position = orvane::SpatialPosition;
    using Selector = orvane::kestrum::core::ISelectorValue;
    using Set = orvane::kestrum::core::IParameterSet;
    using Slider = orvane::kestrum::core::ISliderValue;
    using SpeakerView = orvane::kestrum::core::ISpeakerParameterSetView;
    template <typename T>
    using Owned = std::unique_ptr<T>;

    [[noreturn]] static void refuse() { throw std::logic_error("this factory does not make it"); }

public:
    mutable int convertersMade = 0;

    Owned<orvane::kestrum::core::ISpeakerPropertiesConverter>
    createSpeakerPropertiesConverter(LayoutList& layouts) const override {
        ++convertersMade;
        return std::make_unique<orvane::kestrum::core::SpeakerPropertiesConverter>(layouts);
    }

    Owned<Set> createParameterSet(Slider* /*headRotation*/,
                                  Owned<OrvaneIPC::IOrvaneParameterClient> /*client*/) const override {
        refuse();
    }
    Owned<orvane::kestrum::core::IToggleValue> createToggleValue(bool /*value*/) const override { refuse(); }
    Owned<Slider> createSliderValue(float /*value*/) const override { refuse(); }
    Owned<Slider> createAtomicSliderValue(float /*value*/) const override { refuse(); }
    Owned<Selector> createSelectorValue(std::uint32_t /*id*/) const override { refuse(); }
    Owned<Layouts> createSupportedLayouts() const override { refuse(); }
    Owned<Presenter> createTogglePresenter(orvane::kestrum::core::IToggleValue* /*value*/,
                                           Owned<orvane::kestrum::core::IToggle> /*toggle*/) const override {
        refuse();
    }
    Owned<Presenter> createSliderPresenter(Slider* /*value*/, Owned<SliderWidget> /*slider*/) const override {
        refuse();
    }
    Owned<Presenter>
    createScenePresenter(Selector* /*scene*/, Owned<SelectorWidget> /*selector*/,
                         Owned<SliderWidget> /*ambience*/,
                         Owned<orvane::kestrum::core::IBackgroundImage> /*background*/) const override {
        refuse();
    }
    Owned<Presenter> createSpeakerSetupPresenter(orvane::kestrum::core::IBusesLayout* /*buses*/,
                                                 Selector* /*setup*/,
                                                 Owned<SelectorWidget> /*selector*/) const override {
        refuse();
    }
    Owned<Presenter> createHeadRotationPresenter(orvane::kestrum::core::IHeadRotationAccessor* /*accessor*/,
                                                 Owned<orvane::kestrum::core::ITimer> /*timer*/,
                                                 Slider* /*value*/,
                                                 Owned<SliderWidget> /*slider*/) const override {
        refuse();
    }
    Owned<Mapper> createSpeakerSetupMapper(Selector* /*setup*/, Set* /*set*/) const override { refuse(); }
    Owned<Mapper> createSceneMapper(Selector* /*scene*/, Set* /*set*/) const override { refuse(); }
    Owned<Mapper> createMasterGainMapper(Slider* /*value*/, Selector* /*scene*/,
                                         Set* /*set*/) const override {
        refuse();
    }
    Owned<Mapper> createFocusMapper(Slider* /*value*/, Selector* /*scene*/, Set* /*set*/) const override {
        refuse();
    }
    Owned<Mapper> createAmbienceMapper(Slider* /*value*/, Selector* /*scene*/, Set* /*set*/) const override {
        refuse();
    }
    Owned<orvane::IEngineManager>
    createEngineManager(Selector* /*setup*/, Layouts* /*layouts*/, Set* /*set*/, Hrir* /*hrir*/,
                        const std::string& /*directory*/,
                        std::function<void()> /*reloadFinished*/) const override {
        refuse();
    }
    Owned<orvane::ISpatialProcessor> createSpeakerProcessor(const Position& /*position*/, Set* /*set*/,
                                                            double /*sampleRate*/,
                                                            std::uint64_t /*blockSize*/,
                                                            Hrir* /*hrir*/) const override {
        refuse();
    }
    Owned<SpeakerView> createSpeakerParameterSetView(const Position& /*position*/,
                                                     SpeakerView* /*view*/) const override {
        refuse();
    }
    Owned<orvane::ISpatialProcessor>
    createBinauralProcessor(double /*sampleRate*/, std::uint64_t /*blockSize*/, Hrir* /*hrir*/,
                            SpeakerView* /*view*/,
                            Owned<orvane::IReloadParameterSet> /*reloadSet*/) const override {
        refuse();
    }
    Owned<orvane::ISpatialProcessor>
    createBinauralReverb(std::uint64_t /*blockSize*/, double /*sampleRate*/,
                         orvane::kestrum::core::IReverbParameterView* /*view*/,
                         Owned<orvane::IReverbFilter> /*reverbFilter*/,
                         std::optional<float> /*expectedDecay*/) const override {
        refuse();
    }
    Owned<orvane::IGenericBiquadFilter> createLowpassFilter(double /*sampleRate*/) const override {
        refuse();
    }
    Owned<orvane::IGenericBiquadFilter> createRumbleFilter(double /*sampleRate*/) const override { refuse(); }
    Owned<InPlace> createOutputProcessor(double /*sampleRate*/, Set* /*set*/,
                                         float /*gainCompensationDb*/) const override {
        refuse();
    }
    Owned<InPlace> createBassReductionProcessor(double /*sampleRate*/) const override { refuse(); }
    Owned<InPlace> createMasterGainProcessor(const float* /*gainDb*/, double /*sampleRate*/) const override {
        refuse();
    }
    Owned<InPlace> createGainCompensationProcessor(float /*gainCompensationDb*/) const override { refuse(); }
    Owned<orvane::kestrum::core::ISelectorFallback>
    createSpeakerSetupFallback(Layouts* /*layouts*/) const override {
        refuse();
    }
    Owned<orvane::kestrum::core::ISelectorFallback> createSceneFallback() const override { refuse(); }
};

} // namespace test
