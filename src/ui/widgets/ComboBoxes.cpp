// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/ComboBoxes.h"

#include "Resources.h"
#include "ui/widgets/Pictures.h"

#include <utility>

namespace orvane {

PictureComboBox::PictureComboBox(const juce::String& name, std::unique_ptr<ComboBoxLookAndFeel> look)
    : juce::ComboBox(name), look(std::move(look)) {
    setLookAndFeel(this->look.get());
    setWantsKeyboardFocus(false);
}

PictureComboBox::~PictureComboBox() { setLookAndFeel(nullptr); }

ComboBox24px::ComboBox24px(juce::Component& owner, const juce::String& name,
                           const juce::Typeface::Ptr& typeface, float fontHeight)
    : PictureComboBox(name, std::make_unique<ComboBoxLookAndFeel>(
                                picture(resources::combo_arrow_24_png, resources::combo_arrow_24_pngSize),
                                juce::Font(typeface).withHeight(fontHeight).withExtraKerningFactor(0.05f),
                                owner)) {}

ComboBox36px::ComboBox36px(juce::Component& owner, const juce::String& name)
    : PictureComboBox(name, std::make_unique<ComboBoxLookAndFeel>(
                                picture(resources::combo_arrow_36_png, resources::combo_arrow_36_pngSize),
                                juce::Font(14.0f, juce::Font::plain).withExtraKerningFactor(0.075f), owner)) {
}

} // namespace orvane
