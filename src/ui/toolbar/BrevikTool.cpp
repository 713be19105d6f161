// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/toolbar/BrevikTool.h"

#include <utility>

namespace BrevikPluginTools {

BrevikTool::BrevikTool(std::string productName) : productName(std::move(productName)) {}

BrevikTool::~BrevikTool() {
    for (const auto& attachment : attachments)
        attachment.editor->removeComponentListener(this);
}

void BrevikTool::attach(juce::Component& editor, const juce::String& productInfoAddress,
                        const juce::String& downloadAddress, const juce::String& makerAddress) {
    auto& toolbar =
        *attachments
             .emplace_back(Attachment{&editor, std::make_unique<LorimondToolbarComponent>(productName)})
             .toolbar;
    editor.addComponentListener(this);
    toolbar.setAddresses(productInfoAddress, downloadAddress, makerAddress);
    toolbar.setBounds(0, editor.getHeight(), editor.getWidth(), LorimondToolbarComponent::height);
    editor.setSize(editor.getWidth(), editor.getHeight() + toolbar.getHeight());
    editor.addAndMakeVisible(toolbar);
}

void BrevikTool::componentBeingDeleted(juce::Component& editor) {
    std::erase_if(attachments, [&](const Attachment& attachment) { return attachment.editor == &editor; });
}

} // namespace BrevikPluginTools
