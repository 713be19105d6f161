// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "MessageLoop.h"
#include "TestProcessor.h"

#include "ui/Editor.h"
#include "ui/MainComponent.h"

#include <memory>
#include <stdexcept>

namespace test {

/// The product's processor with its editor open, in the order in which a host opens and closes them.
class OpenEditor {
public:
    explicit OpenEditor(Processor& processor) : editor(processor.createEditor()), processor(&processor) {}
    ~OpenEditor() { processor->editorBeingDeleted(editor.get()); }
    OpenEditor(const OpenEditor&) = delete;
    OpenEditor& operator=(const OpenEditor&) = delete;

    juce::AudioProcessorEditor& window() { return *editor; }

    orvane::kestrum::MainComponent& widgets() {
        for (auto* const child : editor->getChildren())
            if (auto* const found = dynamic_cast<orvane::kestrum::MainComponent*>(child))
                return *found;
        throw std::runtime_error("no main component");
    }

private:
    std::unique_ptr<juce::AudioProcessorEditor> editor;
    Processor* processor;
};

} // namespace test
