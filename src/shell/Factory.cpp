// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Factory.h"

#include "shell/ProcessorState.h"
#include "shell/SelectorParameterPresenter.h"
#include "shell/SliderParameterPresenter.h"
#include "ui/BackgroundImage.h"
#include "ui/Selector.h"
#include "ui/Slider.h"
#include "ui/SpeakerSetup.h"
#include "ui/StepThroughSelector.h"
#include "ui/Timer.h"
#include "ui/WatchDog.h"

#include <utility>

namespace orvane::kestrum {

std::unique_ptr<IProcessorState>
Factory::createProcessorState(const juce::Identifier& type, core::ISupportedLayouts* supportedLayouts) const {
    return std::make_unique<ProcessorState>(type, componentFactory, supportedLayouts);
}

std::unique_ptr<core::ISlider> Factory::createSlider(juce::Slider& slider) const {
    return std::make_unique<Slider>(slider);
}

std::unique_ptr<core::ISelector> Factory::createSelector(juce::ComboBox& comboBox) const {
    return std::make_unique<Selector>(comboBox);
}

std::unique_ptr<core::IBackgroundImage> Factory::createBackgroundImage(juce::Image& image,
                                                                       std::function<void()> repaint) const {
    return std::make_unique<BackgroundImage>(image, std::move(repaint));
}

std::unique_ptr<core::ISelector> Factory::createStepThroughSelector(juce::ComboBox& comboBox,
                                                                    juce::Button& nextButton,
                                                                    juce::Button& previousButton) const {
    return std::make_unique<StepThroughSelector<Selector>>(comboBox, nextButton, previousButton);
}

std::unique_ptr<core::ISelector> Factory::createSpeakerSetup(juce::ComboBox& comboBox, juce::Image& image,
                                                             std::uint32_t initialId,
                                                             std::function<void()> repaint) const {
    return std::make_unique<SpeakerSetup<Selector>>(comboBox, image, initialId, std::move(repaint));
}

std::unique_ptr<core::ITimer> Factory::createTimer() const { return std::make_unique<Timer>(); }

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

std::unique_ptr<IWatchDog> Factory::createWatchDog(IProcessor& processor) const {
    return std::make_unique<WatchDog>(processor);
}

} // namespace orvane::kestrum
