// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/ArrowButtons.h"

#include "Resources.h"
#include "ui/widgets/Pictures.h"

namespace orvane {

ArrowButton::ArrowButton(const juce::String& name, const juce::Image& pressed)
    : juce::ImageButton(name), pressed(pressed) {
    setWantsKeyboardFocus(false);
}

void ArrowButton::paintButton(juce::Graphics& g, bool /*shouldDrawButtonAsHighlighted*/,
                              bool shouldDrawButtonAsDown) {
    if (shouldDrawButtonAsDown)
        g.drawImage(pressed, getLocalBounds().toFloat());
}

ArrowButtonLeft::ArrowButtonLeft(const juce::String& name)
    : ArrowButton(name, picture(resources::arrow_left_png, resources::arrow_left_pngSize)) {}

ArrowButtonRight::ArrowButtonRight(const juce::String& name)
    : ArrowButton(name, picture(resources::arrow_right_png, resources::arrow_right_pngSize)) {}

} // namespace orvane
