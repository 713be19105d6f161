// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace orvane {

/// What all our sliders have in common: no text box of their own, no keyboard focus, and a person's habits. The wheel
/// steps, a drag with Shift, Ctrl or Command moves about ten times finer, and a double click or a click with Alt goes
/// back to the reset value that the kind, or its owner, sets.
///
/// Thread  message thread.
class PictureSlider : public juce::Slider {
protected:
    /// @param lookAndFeel borrowed, shared by all sliders of a kind for the life of the process.
    PictureSlider(const juce::String& name, SliderStyle style, juce::LookAndFeel& lookAndFeel);

    /// The modifier that turns a click into a reset.
    static constexpr juce::ModifierKeys::Flags resetModifier = juce::ModifierKeys::altModifier;
};

} // namespace orvane
