// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/ComboBoxLookAndFeel.h"

#include "ui/widgets/Colours.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr int textInset = 5;    ///< Between arrow and text, and between text and the right edge.
constexpr int headingInset = 8; ///< From the menu's left edge.
constexpr float disabledOpacity = 0.4f;

} // namespace

ComboBoxLookAndFeel::ComboBoxLookAndFeel(const juce::Image& arrow, const juce::Font& font,
                                         juce::Component& owner)
    : arrow(arrow), font(font), owner(&owner) {
    setColour(juce::PopupMenu::backgroundColourId, colours::menu);
    setColour(juce::PopupMenu::highlightedBackgroundColourId, colours::highlight);
    setColour(juce::PopupMenu::highlightedTextColourId, colours::teal);
    setColour(juce::PopupMenu::textColourId, colours::teal);
    setColour(juce::PopupMenu::headerTextColourId, juce::Colours::white);
    setColour(juce::ComboBox::textColourId, colours::teal);
}

void ComboBoxLookAndFeel::drawComboBox(juce::Graphics& g, int /*width*/, int height, bool /*isButtonDown*/,
                                       int /*buttonX*/, int /*buttonY*/, int /*buttonW*/, int /*buttonH*/,
                                       juce::ComboBox& box) {
    g.setOpacity(box.isEnabled() ? 1.0f : disabledOpacity);
    g.drawImage(arrow, arrowArea(height).toFloat());
}

juce::Font ComboBoxLookAndFeel::getComboBoxFont(juce::ComboBox& /*box*/) { return font; }

void ComboBoxLookAndFeel::positionComboBoxText(juce::ComboBox& box, juce::Label& label) {
    const int x = arrow.getWidth() / 2;
    label.setBounds(x, 0, box.getWidth(), box.getHeight());
    label.setJustificationType(juce::Justification::centredLeft);
    label.setFont(font);
    // The label reaches beyond the box by as much as it is moved; its text stays inside.
    label.setBorderSize({1, textInset, 1, textInset + x});
}

juce::PopupMenu::Options ComboBoxLookAndFeel::getOptionsForComboBoxPopupMenu(juce::ComboBox& box,
                                                                             juce::Label& label) {
    auto options = juce::LookAndFeel_V3::getOptionsForComboBoxPopupMenu(box, label);
    return owner == nullptr ? options : options.withDeletionCheck(*owner);
}

juce::Font ComboBoxLookAndFeel::getPopupMenuFont() { return font; }

void ComboBoxLookAndFeel::getIdealPopupMenuItemSize(const juce::String& text, bool isSeparator,
                                                    int standardMenuItemHeight, int& idealWidth,
                                                    int& idealHeight) {
    const bool standard = standardMenuItemHeight > 0;
    if (isSeparator) {
        idealWidth = 50;
        idealHeight = standard ? standardMenuItemHeight / 2 : 10;
        return;
    }
    auto itemFont = font;
    if (standard)
        itemFont.setHeight(std::min(font.getHeight(), static_cast<float>(standardMenuItemHeight) / 1.3f));
    idealHeight = standard ? standardMenuItemHeight - 4 : juce::roundToInt(itemFont.getHeight() * 1.3f);
    idealWidth = itemFont.getStringWidth(text) + 2 * idealHeight;
}

void ComboBoxLookAndFeel::drawPopupMenuSectionHeader(juce::Graphics& g, const juce::Rectangle<int>& area,
                                                     const juce::String& sectionName) {
    g.setFont(font);
    g.setColour(findColour(juce::PopupMenu::headerTextColourId));
    g.drawFittedText(sectionName, area.withTrimmedLeft(headingInset).withTrimmedBottom(area.getHeight() / 5),
                     juce::Justification::bottomLeft, 1);
}

juce::Rectangle<int> ComboBoxLookAndFeel::arrowArea(int boxHeight) const {
    const int height = arrow.getHeight() / 2;
    return {0, (boxHeight - height) / 2, arrow.getWidth() / 2, height};
}

} // namespace orvane
