// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/WarningOverlay.h"

#include "ui/toolbar/WebAddresses.h"
#include "ui/widgets/Fonts.h"

namespace orvane::kestrum {

namespace {

constexpr int textWidth = 450;
constexpr int textHeight = 300;
constexpr int maximumLines =
    8; ///< For the framework to squeeze into; a text with line breaks has as many as it needs.
constexpr float fontHeight = 14.0f;

juce::String warning() {
    // Deliberate: the words as they stand, two blanks before the last address included.
    return juce::String(
               "An error has occurred. The output of this plugin was muted as a result. "
               "One of two things could have caused this:\n\n"
               "1. A sample rate other than the supported 44100, 48000, 88200, 96000, 176400 or 192000 Hz. "
               "was used in the context of this plugin. "
               "Please consider using one of the supported sample rates to solve this problem.\n\n"
               "2. The plugin is missing some crucial files. "
               "Likely, a corrupt installation is the reason for this. "
               "Please reinstall the plugin with the official Lorimond installer to solve this problem.\n\n"
               "If this tip wasn't helpful or if you have additional questiosn, please visit ") +
           BrevikPluginTools::web::supportPage + " for more info or get in touch with our support team at  " +
           BrevikPluginTools::web::supportMail;
}

} // namespace

void WarningOverlay::paint(juce::Graphics& g) {
    g.fillAll(juce::Colour(0xc2222222));
    g.setColour(juce::Colours::white);
    g.setFont(juce::Font(fonts::latoRegular()).withHeight(fontHeight));
    g.drawFittedText(warning(), (getWidth() - textWidth) / 2, (getHeight() - textHeight) / 2, textWidth,
                     textHeight, juce::Justification::centred, maximumLines, 0.0f);
}

} // namespace orvane::kestrum
