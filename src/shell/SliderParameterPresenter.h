// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/core/ISliderValue.h"
#include "ui/IParameterPresenter.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <atomic>
#include <memory>

namespace orvane::kestrum {

/// Joins a slider value to a host parameter of the same unit. The parameter's range and step hold for the
/// value, too: whatever is set comes back limited and snapped.
///
/// Thread  as SelectorParameterPresenter.
class SliderParameterPresenter final : public IParameterPresenter,
                                       private core::ISliderValue::Listener,
                                       private juce::AudioProcessorParameter::Listener {
public:
    /// @param value borrowed, outlives the presenter.
    SliderParameterPresenter(const juce::String& name, core::ISliderValue* value, float minimum,
                             float maximum, float step);
    ~SliderParameterPresenter() override;
    SliderParameterPresenter(const SliderParameterPresenter&) = delete;
    SliderParameterPresenter& operator=(const SliderParameterPresenter&) = delete;

    juce::AudioProcessorParameter* releaseParameter() override;

private:
    using Parameter = juce::AudioProcessorValueTreeState::Parameter;

    void valueChanged() override;
    void parameterValueChanged(int parameterIndex, float newValue) override;
    void parameterGestureChanged(int, bool) override {}

    float normalised(float unnormalised) const noexcept;

    core::ISliderValue* value;
    std::unique_ptr<Parameter> parameter;
    std::atomic<float> currentValue{0.0f};
    bool released = false;
};

} // namespace orvane::kestrum
