// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <gtest/gtest.h>

namespace test {

/// A compiled-in PNG, decoded without the product's help.
juce::Image decoded(const char* data, int size);

/// A component as it would be on a screen, on transparent ground.
juce::Image shot(juce::Component& component, float scale = 1.0f);

/// Whether two pictures have the same size and the same pixels; says which differ first.
::testing::AssertionResult samePixels(const juce::Image& actual, const juce::Image& expected);

/// Number of pixels that are not wholly transparent.
int visiblePixels(const juce::Image& image);

/// A mouse event on a component, as from a person's main mouse.
juce::MouseEvent mouse(juce::Component& component, juce::Point<float> position,
                       juce::ModifierKeys modifiers = {}, juce::Point<float> downPosition = {},
                       int clicks = 1, bool dragged = false);

/// Presses at the component's middle, moves by `steps` steps of `step` each, and lets go.
void drag(juce::Component& component, juce::Point<float> step, int steps, juce::ModifierKeys modifiers = {});

/// Types into a label as a person does: opens its editor, where all is selected, types, and presses Return.
void type(juce::Label& label, const juce::String& text);

/// The names of the buttons that were clicked.
struct Clicks final : juce::Button::Listener {
    void buttonClicked(juce::Button* button) override { names.add(button->getName()); }
    juce::StringArray names;
};

/// The first child of a type; never null.
template <typename Kind>
Kind& child(juce::Component& parent, const juce::String& name = {}) {
    for (auto* const candidate : parent.getChildren())
        if (auto* const found = dynamic_cast<Kind*>(candidate))
            if (name.isEmpty() || candidate->getName() == name)
                return *found;
    throw std::runtime_error("no such child");
}

} // namespace test
