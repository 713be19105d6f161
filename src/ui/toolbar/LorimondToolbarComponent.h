// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/widgets/ComboBoxLookAndFeel.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <string>

namespace BrevikPluginTools {

/// A strip 24 high below a plug-in's view: the seller's logo, which opens the seller's home page, and a help button,
/// which opens a menu of the manual and of web pages. A browser or viewer that does not start gives no message.
///
/// Thread  message thread. While the help menu is open, the click on its button does not return; toolbar and editor may
/// be deleted meanwhile, which closes the menu.
class LorimondToolbarComponent final : public juce::Component, public juce::Button::Listener {
public:
    static constexpr int height = 24;

    /// @param productName names the manual's folder and file.
    explicit LorimondToolbarComponent(std::string productName);
    ~LorimondToolbarComponent() override;

    void setAddresses(const juce::String& productInfo, const juce::String& download,
                      const juce::String& maker);

    void paint(juce::Graphics& g) override;
    void resized() override;
    void buttonClicked(juce::Button* button) override;

private:
    int showHelpMenu();
    void actOn(int helpEntry);

    juce::ImageButton logoButton{"LorimondLogo"};
    juce::ImageButton helpButton{"LorimondHelp"};
    // Never shown: the framework's link buttons do the work of opening a browser.
    juce::HyperlinkButton sellerLink;
    juce::HyperlinkButton makerLink;
    juce::HyperlinkButton productInfoLink;
    juce::HyperlinkButton downloadLink;
    std::string productName;
    orvane::ComboBoxLookAndFeel menuLookAndFeel; ///< As the editor's menus.
};

} // namespace BrevikPluginTools
