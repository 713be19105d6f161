// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/toolbar/LorimondToolbarComponent.h"

#include "Resources.h"
#include "ui/toolbar/Manual.h"
#include "ui/toolbar/WebAddresses.h"
#include "ui/widgets/Fonts.h"
#include "ui/widgets/Pictures.h"

#include <algorithm>
#include <utility>

namespace BrevikPluginTools {

namespace {

constexpr int logoWidth = 120;
constexpr int helpWidth = 24;
constexpr float menuFontHeight = 15.0f;

enum HelpEntry { manualEntry = 1, productInfoEntry, downloadEntry, sellerEntry, makerEntry };

void setAddress(juce::HyperlinkButton& link, const juce::String& address) {
    link.setURL(juce::URL(address));
    link.setTooltip(address);
}

void setPictures(juce::ImageButton& button, const juce::Image& normal, const juce::Image& pressed) {
    const auto noOverlay = juce::Colours::transparentBlack;
    button.setImages(false, true, true, normal, 1.0f, noOverlay, {}, 1.0f, noOverlay, pressed, 1.0f,
                     noOverlay);
}

} // namespace

LorimondToolbarComponent::LorimondToolbarComponent(std::string productName)
    : sellerLink("lorimond", juce::URL(web::seller)),
      makerLink("Orvane", {}),
      productInfoLink("OrvaneProductInfo", {}),
      downloadLink("OrvaneDownloadUpdates", {}),
      productName(std::move(productName)),
      menuLookAndFeel({}, juce::Font(orvane::fonts::heeboRegular()).withHeight(menuFontHeight), *this) {
    using namespace resources;
    setPictures(logoButton, orvane::picture(toolbar_logo_png, toolbar_logo_pngSize),
                orvane::picture(toolbar_logo_down_png, toolbar_logo_down_pngSize));
    setPictures(helpButton, orvane::picture(toolbar_help_png, toolbar_help_pngSize),
                orvane::picture(toolbar_help_down_png, toolbar_help_down_pngSize));
    for (juce::ImageButton* const button : {&logoButton, &helpButton}) {
        button->setWantsKeyboardFocus(false);
        button->addListener(this);
        addAndMakeVisible(button);
    }
    setAddress(sellerLink, web::seller);
    for (juce::HyperlinkButton* const link : {&sellerLink, &makerLink, &productInfoLink, &downloadLink})
        addChildComponent(link);
}

LorimondToolbarComponent::~LorimondToolbarComponent() {
    // An open help menu would wait for ever, and draw with what dies here.
    juce::PopupMenu::dismissAllActiveMenus();
}

void LorimondToolbarComponent::setAddresses(const juce::String& productInfo, const juce::String& download,
                                            const juce::String& maker) {
    setAddress(productInfoLink, productInfo);
    setAddress(downloadLink, download);
    setAddress(makerLink, maker);
}

void LorimondToolbarComponent::paint(juce::Graphics& g) {
    g.setImageResamplingQuality(juce::Graphics::highResamplingQuality);
    g.fillAll(juce::Colour(0xff000000));
}

void LorimondToolbarComponent::resized() {
    logoButton.setBounds(0, 0, logoWidth, height);
    helpButton.setBounds(std::max(0, getWidth() - helpWidth), 0, helpWidth, height);
}

void LorimondToolbarComponent::buttonClicked(juce::Button* button) {
    if (button == &logoButton) {
        sellerLink.triggerClick();
        return;
    }
    if (button != &helpButton)
        return;
    const juce::Component::SafePointer<LorimondToolbarComponent> self(this);
    const int chosen = showHelpMenu();
    if (self != nullptr) // it may have died while the menu was open
        actOn(chosen);
}

int LorimondToolbarComponent::showHelpMenu() {
    juce::PopupMenu menu;
    menu.addItem(manualEntry, "Open Manual...");
    menu.addItem(productInfoEntry, "Product Info...");
    menu.addItem(downloadEntry, "Download Updates...");
    menu.addItem(sellerEntry, "Lorimond Website...");
    menu.addItem(makerEntry, "Orvane Website...");
    menu.setLookAndFeel(&menuLookAndFeel);
    // Inside the editor: hosts scale, move, cover and close it, and the menu with it.
    return menu.showMenu(juce::PopupMenu::Options()
                             .withTargetComponent(helpButton)
                             .withParentComponent(getParentComponent())
                             .withStandardItemHeight(height));
}

void LorimondToolbarComponent::actOn(int helpEntry) {
    switch (helpEntry) {
    case manualEntry:
        openManual(manualFile(programsDirectory(), productName));
        break;
    case productInfoEntry:
        productInfoLink.triggerClick();
        break;
    case downloadEntry:
        downloadLink.triggerClick();
        break;
    case sellerEntry:
        sellerLink.triggerClick();
        break;
    case makerEntry:
        makerLink.triggerClick();
        break;
    default: // dismissed
        break;
    }
}

} // namespace BrevikPluginTools
