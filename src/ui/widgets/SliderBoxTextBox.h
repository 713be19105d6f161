// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <functional>

namespace orvane {

/// Shows a slider's value as a number, and takes a typed one: a click opens it, Return or a click elsewhere sets the
/// slider, Escape does not. What is typed out of the slider's range ends at the range's limit, what lies between two
/// steps on one of them. Follows the slider's enablement; does nothing once the slider is gone.
///
/// Thread  message thread.
class SliderBoxTextBox final : public juce::Component,
                               private juce::Slider::Listener,
                               private juce::ComponentListener {
public:
    /// Value and number of decimals to text. An empty one stands for the value rounded to that many decimals.
    using Formatter = std::function<juce::String(double value, int decimals)>;

    /// @param slider borrowed; the label inside is named after it.
    SliderBoxTextBox(juce::Slider& slider, int decimals, Formatter formatter,
                     const juce::Typeface::Ptr& typeface, float fontHeight);
    ~SliderBoxTextBox() override;

    void setSuffix(const juce::String& newSuffix);

    void resized() override;

private:
    void sliderValueChanged(juce::Slider* changed) override;
    void componentEnablementChanged(juce::Component& component) override;
    void componentBeingDeleted(juce::Component& component) override;

    void styleLabel(const juce::Typeface::Ptr& typeface, float fontHeight);
    void styleEditor();
    void takeText();
    void showValue();

    juce::Slider* slider; ///< Null once it is deleted.
    juce::Label label;
    int decimals;
    Formatter formatter;
    juce::String suffix;
};

} // namespace orvane
