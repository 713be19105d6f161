// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/PictureSlider.h"

namespace orvane {

namespace {

// Not Alt, which resets. The framework's fine drag grows faster than the hand does; with these numbers, chosen by hand,
// slow moves cover about a seventh of what they cover without a modifier, brisk ones a fifteenth.
constexpr auto fineDragModifiers = static_cast<juce::ModifierKeys::Flags>(
    juce::ModifierKeys::shiftModifier | juce::ModifierKeys::ctrlModifier |
    juce::ModifierKeys::commandModifier);
constexpr double fineDragSensitivity = 0.2;
constexpr int fineDragThreshold = 0;
constexpr double fineDragOffset = 0.05;

} // namespace

PictureSlider::PictureSlider(const juce::String& name, SliderStyle style, juce::LookAndFeel& lookAndFeel)
    : juce::Slider(style, NoTextBox) {
    setName(name);
    setWantsKeyboardFocus(false);
    setRepaintsOnMouseActivity(false); // the pictures do not change under the mouse
    setVelocityModeParameters(fineDragSensitivity, fineDragThreshold, fineDragOffset, true,
                              fineDragModifiers);
    setLookAndFeel(&lookAndFeel);
}

} // namespace orvane
