// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/SliderBoxTextBox.h"

#include "ui/widgets/Colours.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvane {

namespace {

juce::String rounded(double value, int decimals) {
    return decimals == 0 ? juce::String(juce::roundToInt(value)) : juce::String(value, decimals);
}

} // namespace

SliderBoxTextBox::SliderBoxTextBox(juce::Slider& slider, int decimals, Formatter formatter,
                                   const juce::Typeface::Ptr& typeface, float fontHeight)
    : juce::Component(slider.getName()),
      slider(&slider),
      label(slider.getName() + "TextBox"),
      decimals(decimals),
      formatter(formatter ? std::move(formatter) : Formatter(rounded)) {
    styleLabel(typeface, fontHeight);
    label.setEnabled(slider.isEnabled());
    label.onEditorShow = [this] { styleEditor(); };
    label.onTextChange = [this] { takeText(); };
    addAndMakeVisible(label);
    slider.addListener(this);
    slider.addComponentListener(this);
    showValue();
}

SliderBoxTextBox::~SliderBoxTextBox() {
    if (slider == nullptr)
        return;
    slider->removeComponentListener(this);
    slider->removeListener(this);
}

void SliderBoxTextBox::setSuffix(const juce::String& newSuffix) {
    suffix = newSuffix;
    showValue();
}

void SliderBoxTextBox::resized() { label.setBounds(getLocalBounds()); }

void SliderBoxTextBox::sliderValueChanged(juce::Slider* /*changed*/) { showValue(); }

void SliderBoxTextBox::componentEnablementChanged(juce::Component& component) {
    label.setEnabled(component.isEnabled());
}

void SliderBoxTextBox::componentBeingDeleted(juce::Component& /*component*/) { slider = nullptr; }

void SliderBoxTextBox::styleLabel(const juce::Typeface::Ptr& typeface, float fontHeight) {
    label.setFont(juce::Font(typeface).withHeight(fontHeight));
    label.setJustificationType(juce::Justification::centred);
    label.setEditable(true, true, false);
    label.setBorderSize(juce::BorderSize<int>(0)); // the longest number fills the box
    label.setColour(juce::Label::backgroundColourId, juce::Colours::transparentBlack);
    label.setColour(juce::Label::outlineColourId, juce::Colours::transparentBlack);
    label.setColour(juce::Label::textColourId, colours::value);
    // The label hands these to its editor. What is selected would vanish in the colour of its highlight.
    label.setColour(juce::TextEditor::backgroundColourId, juce::Colours::transparentBlack);
    label.setColour(juce::TextEditor::textColourId, colours::value);
    label.setColour(juce::TextEditor::highlightColourId, colours::value);
    label.setColour(juce::TextEditor::highlightedTextColourId, colours::valueSelected);
    label.setColour(juce::TextEditor::outlineColourId, juce::Colours::transparentBlack);
    label.setColour(juce::TextEditor::focusedOutlineColourId, juce::Colours::transparentBlack);
    label.setColour(juce::CaretComponent::caretColourId, colours::value);
}

void SliderBoxTextBox::styleEditor() {
    auto* const editor = label.getCurrentTextEditor();
    if (editor == nullptr)
        return;
    editor->setInputRestrictions(0, "-.0123456789");
    editor->setBorder(
        juce::BorderSize<int>(0)); // as the label, so that the number does not jump when it opens
    editor->setIndents(0, 0);
    editor->setJustification(juce::Justification::centred);
}

void SliderBoxTextBox::takeText() {
    if (slider == nullptr)
        return;
    const double typed = label.getText().getDoubleValue();
    const double clamped = std::clamp(typed, slider->getMinimum(), slider->getMaximum());
    if (!std::isnan(clamped) && clamped != slider->getValue())
        slider->setValue(clamped, juce::sendNotificationSync);
    showValue(); // also when the slider stays where it is, so that the text snaps back
}

void SliderBoxTextBox::showValue() {
    if (slider != nullptr)
        label.setText(formatter(slider->getValue(), decimals) + suffix, juce::dontSendNotification);
}

} // namespace orvane
