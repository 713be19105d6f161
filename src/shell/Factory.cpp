// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Factory.h"

#include "shell/ProcessorState.h"
#include "shell/SelectorParameterPresenter.h"
#include "shell/SliderParameterPresenter.h"

#include <utility>

namespace orvane::kestrum {

std::unique_ptr<IProcessorState>
Factory::createProcessorState(const juce::Identifier& type, core::ISupportedLayouts* supportedLayouts) const {
    return std::make_unique<ProcessorState>(type, componentFactory, supportedLayouts);
}

std::unique_ptr<IParameterPresenter>
Factory::createSelectorParameterPresenter(const juce::String& name, core::ISelectorValue* value,
                                          std::vector<std::string> names) const {
    return std::make_unique<SelectorParameterPresenter>(name, value, std::move(names));
}

std::unique_ptr<IParameterPresenter> Factory::createSliderParameterPresenter(const juce::String& name,
                                                                             core::ISliderValue* value,
                                                                             float minimum, float maximum,
                                                                             float step) const {
    return std::make_unique<SliderParameterPresenter>(name, value, minimum, maximum, step);
}

} // namespace orvane::kestrum
