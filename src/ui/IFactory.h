// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace juce {
class Button;
class ComboBox;
class Image;
class Slider;
} // namespace juce

namespace orvane::kestrum {

namespace core {
class IBackgroundImage;
class ISelector;
class ISelectorValue;
class ISlider;
class ISliderValue;
class ISupportedLayouts;
class ITimer;
} // namespace core

class IParameterPresenter;
class IProcessor;
class IProcessorState;
class IWatchDog;

/// Makes the objects that name the framework. Raw pointers are borrowed, never null, and have to outlive what
/// is made; widgets, which come as references, may die before the views that are made for them.
///
/// Thread  views, timers and watchdogs on the message thread, the others on that or a setup thread.
class IFactory {
public:
    virtual ~IFactory() = default;

    /// @param type root type of the state's tree.
    virtual std::unique_ptr<IProcessorState>
    createProcessorState(const juce::Identifier& type, core::ISupportedLayouts* supportedLayouts) const = 0;

    virtual std::unique_ptr<core::ISlider> createSlider(juce::Slider& slider) const = 0;
    virtual std::unique_ptr<core::ISelector> createSelector(juce::ComboBox& comboBox) const = 0;

    /// @param image filled with the background; outlives every call of the view's.
    /// @param repaint called after the image has changed.
    virtual std::unique_ptr<core::IBackgroundImage>
    createBackgroundImage(juce::Image& image, std::function<void()> repaint) const = 0;

    virtual std::unique_ptr<core::ISelector>
    createStepThroughSelector(juce::ComboBox& comboBox, juce::Button& nextButton,
                              juce::Button& previousButton) const = 0;

    /// @param image filled with the diagram of `initialId` at once; outlives every call of the view's.
    /// @param repaint called after the image has changed.
    /// @throws std::out_of_range when `initialId` is no layout's.
    virtual std::unique_ptr<core::ISelector> createSpeakerSetup(juce::ComboBox& comboBox, juce::Image& image,
                                                                std::uint32_t initialId,
                                                                std::function<void()> repaint) const = 0;

    virtual std::unique_ptr<core::ITimer> createTimer() const = 0;

    virtual std::unique_ptr<IParameterPresenter>
    createSelectorParameterPresenter(const juce::String& name, core::ISelectorValue* value,
                                     std::vector<std::string> names) const = 0;

    virtual std::unique_ptr<IParameterPresenter> createSliderParameterPresenter(const juce::String& name,
                                                                                core::ISliderValue* value,
                                                                                float minimum, float maximum,
                                                                                float step) const = 0;

    virtual std::unique_ptr<IWatchDog> createWatchDog(IProcessor& processor) const = 0;
};

} // namespace orvane::kestrum
