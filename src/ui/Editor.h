// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IComponentFactory.h"
#include "core/IPresenter.h"
#include "ui/IFactory.h"
#include "ui/IProcessor.h"
#include "ui/IWatchDog.h"
#include "ui/MainComponent.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <functional>
#include <memory>
#include <vector>

namespace orvane::kestrum {

/// The plug-in's window: builds widgets, views and presenters and joins them to the processor's values.
///
///     widget <--> view <--> presenter <--> value <--> host parameter
///     error flag --> watchdog --> warning over the widgets
///
/// One fixed size of 1080 by 636, whatever scale the host shows it at; the help toolbar, when it is attached, lies below.
///
/// Thread  message thread.
class Editor final : public juce::AudioProcessorEditor {
public:
    static constexpr int width = 1080;
    static constexpr int height = 636;

    /// @param processor, componentFactory, factory borrowed, outlive the editor.
    /// @throws std::out_of_range when the processor holds a layout that has no diagram.
    Editor(IProcessor& processor, core::IComponentFactory& componentFactory, IFactory& factory);
    ~Editor() override;
    Editor(const Editor&) = delete;
    Editor& operator=(const Editor&) = delete;

    /// Nothing: the main component covers everything.
    void paint(juce::Graphics&) override {}
    void resized() override;

private:
    void addSpeakerSetup(IProcessor& processor, core::IComponentFactory& componentFactory, IFactory& factory);
    void addScene(IProcessor& processor, core::IComponentFactory& componentFactory, IFactory& factory);
    void addSliders(IProcessor& processor, core::IComponentFactory& componentFactory, IFactory& factory);
    juce::Button& button(const char* componentId);
    void fillSelectors(IProcessor& processor);

    std::vector<std::unique_ptr<core::IPresenter>>
        presenters; ///< Outlive the widgets: views take care of that.
    std::unique_ptr<IWatchDog> watchDog;
    MainComponent mainComponent;
    std::function<void()>
        repaintCallback; ///< Views keep copies, which do nothing once mainComponent has died.
};

} // namespace orvane::kestrum
