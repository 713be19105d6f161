// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace orvane {

/// A button that draws nothing but a highlight while it is pressed; the arrow itself belongs to the picture behind it.
///
/// Thread  message thread.
class ArrowButton : public juce::ImageButton {
public:
    void paintButton(juce::Graphics& g, bool shouldDrawButtonAsHighlighted,
                     bool shouldDrawButtonAsDown) override;

protected:
    ArrowButton(const juce::String& name, const juce::Image& pressed);

private:
    juce::Image pressed; ///< Shown at the button's size.
};

class ArrowButtonLeft final : public ArrowButton {
public:
    explicit ArrowButtonLeft(const juce::String& name);
};

class ArrowButtonRight final : public ArrowButton {
public:
    explicit ArrowButtonRight(const juce::String& name);
};

} // namespace orvane
