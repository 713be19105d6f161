// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Editor.h"

#include "core/IBackgroundImage.h"
#include "core/ISelector.h"
#include "core/ISlider.h"
#include "core/ITimer.h"
#include "parameters/core/ISelectorValue.h"
#include "parameters/core/ISliderValue.h"
#include "ui/IProcessorState.h"
#include "ui/SelectorMenus.h"

#include <bit>
#include <cstdint>

namespace orvane::kestrum {

namespace {

void select(juce::ComboBox& comboBox, const core::ISelectorValue& value) {
    comboBox.setSelectedId(std::bit_cast<int>(value.getValue()), juce::sendNotificationAsync);
}

} // namespace

Editor::Editor(IProcessor& processor, core::IComponentFactory& componentFactory, IFactory& factory)
    : juce::AudioProcessorEditor(processor.getAudioProcessor()),
      watchDog(factory.createWatchDog(processor)),
      repaintCallback([component = juce::Component::SafePointer<MainComponent>(&mainComponent)]() mutable {
          if (component != nullptr)
              component->repaint();
      }) {
    addSpeakerSetup(processor, componentFactory, factory);
    addScene(processor, componentFactory, factory);
    addSliders(processor, componentFactory, factory);
    setOpaque(true);
    setSize(width, height);
    addAndMakeVisible(mainComponent);
    fillSelectors(processor);
    watchDog->addListener(&mainComponent);
}

Editor::~Editor() {
    watchDog->removeListener(&mainComponent);
    repaintCallback = nullptr;
}

void Editor::addSpeakerSetup(IProcessor& processor, core::IComponentFactory& componentFactory,
                             IFactory& factory) {
    auto* const value = processor.getProcessorState()->getSpeakerSetup();
    presenters.push_back(componentFactory.createSpeakerSetupPresenter(
        &processor, value,
        factory.createSpeakerSetup(mainComponent.speakerSetup, mainComponent.speakerImage, value->getValue(),
                                   repaintCallback)));
}

void Editor::addScene(IProcessor& processor, core::IComponentFactory& componentFactory, IFactory& factory) {
    auto background = factory.createBackgroundImage(mainComponent.backgroundImage, repaintCallback);
    auto ambience = factory.createSlider(mainComponent.ambience); // only to enable and disable it
    auto selector = factory.createStepThroughSelector(mainComponent.scene, button("SceneButtonNext"),
                                                      button("SceneButtonPrevious"));
    presenters.push_back(componentFactory.createScenePresenter(processor.getProcessorState()->getScene(),
                                                               std::move(selector), std::move(ambience),
                                                               std::move(background)));
}

void Editor::addSliders(IProcessor& processor, core::IComponentFactory& componentFactory, IFactory& factory) {
    auto* const state = processor.getProcessorState();
    auto dial = factory.createSlider(mainComponent.headRotation);
    presenters.push_back(componentFactory.createHeadRotationPresenter(
        &processor, factory.createTimer(), state->getHeadRotation(), std::move(dial)));
    presenters.push_back(componentFactory.createSliderPresenter(
        state->getMasterGain(), factory.createSlider(mainComponent.masterGain)));
    presenters.push_back(
        componentFactory.createSliderPresenter(state->getFocus(), factory.createSlider(mainComponent.focus)));
    presenters.push_back(componentFactory.createSliderPresenter(
        state->getAmbience(), factory.createSlider(mainComponent.ambience)));
}

juce::Button& Editor::button(const char* componentId) {
    return dynamic_cast<juce::Button&>(*mainComponent.findChildWithID(componentId));
}

void Editor::fillSelectors(IProcessor& processor) {
    auto* const state = processor.getProcessorState();
    fillSpeakerSetup(mainComponent.speakerSetup, *processor.getSupportedLayouts(),
                     processor.getNumberOfInputChannels());
    select(mainComponent.speakerSetup, *state->getSpeakerSetup());
    fillScene(mainComponent.scene);
    select(mainComponent.scene, *state->getScene());
}

void Editor::resized() { mainComponent.setBounds(0, 0, width, height); }

} // namespace orvane::kestrum
