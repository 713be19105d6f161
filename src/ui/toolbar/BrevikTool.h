// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/toolbar/LorimondToolbarComponent.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <memory>
#include <string>
#include <vector>

namespace BrevikPluginTools {

/// Gives each editor that it is shown a toolbar of its own, which lives as long as the editor.
///
/// Thread  message thread.
class BrevikTool final : private juce::ComponentListener {
public:
    explicit BrevikTool(std::string productName);
    ~BrevikTool() override; ///< Editors that are still open lose their toolbars.
    BrevikTool(const BrevikTool&) = delete;
    BrevikTool& operator=(const BrevikTool&) = delete;

    /// Makes the editor higher by the toolbar, which then lies at the bottom.
    ///
    /// @param editor borrowed, at its final size; once only.
    void attach(juce::Component& editor, const juce::String& productInfoAddress,
                const juce::String& downloadAddress, const juce::String& makerAddress);

private:
    void componentBeingDeleted(juce::Component& editor) override;

    struct Attachment {
        juce::Component* editor;
        std::unique_ptr<LorimondToolbarComponent> toolbar;
    };

    std::string productName;
    std::vector<Attachment> attachments;
};

} // namespace BrevikPluginTools
