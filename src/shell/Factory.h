// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IComponentFactory.h"
#include "ui/IFactory.h"

namespace orvane::kestrum {

/// The one place where the product's framework classes are chosen.
class Factory final : public IFactory {
public:
    /// @param componentFactory borrowed, outlives the factory.
    explicit Factory(const core::IComponentFactory* componentFactory) noexcept
        : componentFactory(componentFactory) {}

    std::unique_ptr<IProcessorState>
    createProcessorState(const juce::Identifier& type,
                         core::ISupportedLayouts* supportedLayouts) const override;
    std::unique_ptr<core::ISlider> createSlider(juce::Slider& slider) const override;
    std::unique_ptr<core::ISelector> createSelector(juce::ComboBox& comboBox) const override;
    std::unique_ptr<core::IBackgroundImage>
    createBackgroundImage(juce::Image& image, std::function<void()> repaint) const override;
    std::unique_ptr<core::ISelector> createStepThroughSelector(juce::ComboBox& comboBox,
                                                               juce::Button& nextButton,
                                                               juce::Button& previousButton) const override;
    std::unique_ptr<core::ISelector> createSpeakerSetup(juce::ComboBox& comboBox, juce::Image& image,
                                                        std::uint32_t initialId,
                                                        std::function<void()> repaint) const override;
    std::unique_ptr<core::ITimer> createTimer() const override;
    std::unique_ptr<IParameterPresenter>
    createSelectorParameterPresenter(const juce::String& name, core::ISelectorValue* value,
                                     std::vector<std::string> names) const override;
    std::unique_ptr<IParameterPresenter> createSliderParameterPresenter(const juce::String& name,
                                                                        core::ISliderValue* value,
                                                                        float minimum, float maximum,
                                                                        float step) const override;
    std::unique_ptr<IWatchDog> createWatchDog(IProcessor& processor) const override;

private:
    const core::IComponentFactory* componentFactory;
};

} // namespace orvane::kestrum
