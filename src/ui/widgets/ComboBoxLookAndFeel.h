// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace orvane {

/// Draws a combo box and its menu. The box itself belongs to the picture behind it: what is drawn is the arrow, at the
/// left edge in the middle of the height, and the chosen entry right of it, squeezed where it would not fit. A disabled
/// box is dimmed. Menus open as the framework's do, with headings in the menu's own font, and close when the owner dies.
///
/// Thread  message thread.
class ComboBoxLookAndFeel final : public juce::LookAndFeel_V3 {
public:
    /// @param arrow twice the displayed size; may be null where only menus are drawn.
    /// @param owner holds the box; borrowed, and only looked at while a menu is opened.
    ComboBoxLookAndFeel(const juce::Image& arrow, const juce::Font& font, juce::Component& owner);

    void drawComboBox(juce::Graphics& g, int width, int height, bool isButtonDown, int buttonX, int buttonY,
                      int buttonW, int buttonH, juce::ComboBox& box) override;
    juce::Font getComboBoxFont(juce::ComboBox& box) override;
    void positionComboBoxText(juce::ComboBox& box, juce::Label& label) override;
    juce::PopupMenu::Options getOptionsForComboBoxPopupMenu(juce::ComboBox& box, juce::Label& label) override;

    juce::Font getPopupMenuFont() override;
    void getIdealPopupMenuItemSize(const juce::String& text, bool isSeparator, int standardMenuItemHeight,
                                   int& idealWidth, int& idealHeight) override;
    void drawPopupMenuSectionHeader(juce::Graphics& g, const juce::Rectangle<int>& area,
                                    const juce::String& sectionName) override;

private:
    juce::Rectangle<int> arrowArea(int boxHeight) const;

    juce::Image arrow;
    juce::Font font;
    juce::Component::SafePointer<juce::Component> owner;
};

} // namespace orvane
