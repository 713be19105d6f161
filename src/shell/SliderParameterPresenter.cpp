// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/SliderParameterPresenter.h"

#include <algorithm>
#include <cmath>

namespace orvane::kestrum {

SliderParameterPresenter::SliderParameterPresenter(const juce::String& name, core::ISliderValue* value,
                                                   float minimum, float maximum, float step)
    : value(value),
      parameter(std::make_unique<Parameter>(
          juce::ParameterID(name), name, juce::NormalisableRange<float>(minimum, maximum, step, 1.0f, false),
          value->getValue(),
          juce::AudioProcessorValueTreeStateParameterAttributes()
              .withMeta(false)
              .withAutomatable(false)
              .withDiscrete(false))) {
    value->addListener(this);
    parameter->addListener(this);
    SliderParameterPresenter::valueChanged();
}

SliderParameterPresenter::~SliderParameterPresenter() {
    parameter->removeListener(this);
    value->removeListener(this);
    if (released)
        static_cast<void>(parameter.release());
}

juce::AudioProcessorParameter* SliderParameterPresenter::releaseParameter() {
    released = true;
    return parameter.get();
}

void SliderParameterPresenter::valueChanged() {
    const float held = value->getValue();
    if (currentValue == held)
        return;
    currentValue.exchange(held);
    parameter->setValueNotifyingHost(normalised(held));
}

void SliderParameterPresenter::parameterValueChanged(int, float newValue) {
    const float held = parameter->get(); // another thread may have written since the new value was
    if (!std::isfinite(newValue) || !std::isfinite(held)) {
        // The parameter has taken the nonsense in; what it stands for has not.
        parameter->setValueNotifyingHost(normalised(value->getValue()));
        return;
    }
    currentValue.exchange(held);
    value->setValue(currentValue);
}

/// Always a number, so that the parameter is not called about nonsense again and again.
float SliderParameterPresenter::normalised(float unnormalised) const noexcept {
    const auto& range = parameter->range;
    const float number = std::isfinite(unnormalised) ? unnormalised : 0.0f;
    return range.convertTo0to1(std::clamp(number, range.start, range.end));
}

} // namespace orvane::kestrum
