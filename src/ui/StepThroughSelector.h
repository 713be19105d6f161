// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <utility>

namespace orvane::kestrum {

/// A selector with two buttons that step through its items, from either end on to the other. Buttons and combo box may
/// die first.
///
/// Thread  as core::ISelector.
template <typename Selector>
class StepThroughSelector final : public Selector, public juce::Button::Listener {
public:
    /// @param nextButton, previousButton borrowed.
    StepThroughSelector(juce::ComboBox& comboBox, juce::Button& nextButton, juce::Button& previousButton)
        : Selector(comboBox), next(&nextButton), previous(&previousButton) {
        nextButton.addListener(this);
        previousButton.addListener(this);
    }

    ~StepThroughSelector() override {
        for (auto* const button : {next.getComponent(), previous.getComponent()})
            if (button != nullptr)
                button->removeListener(this);
    }
    StepThroughSelector(const StepThroughSelector&) = delete;
    StepThroughSelector& operator=(const StepThroughSelector&) = delete;

    void buttonClicked(juce::Button* button) override {
        auto* const box = this->widget();
        if (box == nullptr)
            return;
        const int last = box->getNumItems() - 1; // headings do not count
        int index = box->getSelectedItemIndex();
        if (button == next.getComponent())
            index = index == last ? 0 : index + 1;
        else if (button == previous.getComponent())
            index = index <= 0 ? last : index - 1;
        box->setSelectedItemIndex(index, juce::sendNotification);
    }

private:
    juce::Component::SafePointer<juce::Button> next;
    juce::Component::SafePointer<juce::Button> previous;
};

} // namespace orvane::kestrum
