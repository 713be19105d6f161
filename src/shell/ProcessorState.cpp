// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/ProcessorState.h"

#include "parameters/core/Scene.h"
#include "parameters/core/SelectorId.h"
#include "shell/SliderRanges.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace orvane::kestrum {

namespace {

const juce::Identifier valueProperty{"Value"};
const juce::Identifier speakerSetupType{"SpeakerSetup"};
const juce::Identifier sceneType{"Scene"};
const juce::Identifier ambienceType{"Ambience"};
const juce::Identifier headRotationType{"HeadRotation"};
const juce::Identifier focusType{"Focus"};
const juce::Identifier masterGainType{"MasterGain"};

constexpr const char* defaultLayout = "2.0 +/-30\xC2\xB0";

juce::ValueTree child(const juce::Identifier& type, const juce::var& value) {
    juce::ValueTree tree(type);
    tree.setProperty(valueProperty, value, nullptr);
    return tree;
}

juce::var asSignedNumber(std::uint32_t id) { return static_cast<int>(std::bit_cast<std::int32_t>(id)); }

/// A child that is missing gives an empty property, which reads as 0.
const juce::var& valueOf(const juce::ValueTree& tree, const juce::Identifier& type) {
    return tree.getChildWithName(type).getProperty(valueProperty);
}

std::uint32_t readIdentifier(const juce::ValueTree& tree, const juce::Identifier& type) {
    return std::bit_cast<std::uint32_t>(static_cast<std::int32_t>(static_cast<int>(valueOf(tree, type))));
}

/// Whether a number in the text has an exponent of more digits than the framework, which counts with an int, can read.
bool hasEndlessExponent(const juce::String& text) {
    constexpr int mostDigits = 9;
    for (auto at = text.getCharPointer(); !at.isEmpty();) {
        const auto letter = at.getAndAdvance();
        if (letter != 'e' && letter != 'E')
            continue;
        if (*at == '+' || *at == '-')
            ++at;
        int digits = 0;
        for (; at.isDigit(); ++at)
            ++digits;
        if (digits > mostDigits)
            return true;
    }
    return false;
}

/// A number that is not finite, or cannot be read, is left out: held in a value it would never compare equal, and value and
/// presenter would go on calling each other. Any other is brought into its range before anybody hears of it.
void readNumber(const juce::ValueTree& tree, const juce::Identifier& type, const SliderRange& range,
                core::ISliderValue& target) {
    const juce::var& value = valueOf(tree, type);
    if (hasEndlessExponent(value.toString()))
        return;
    const auto number = static_cast<double>(value);
    if (std::isfinite(number))
        target.setValue(static_cast<float>(std::clamp<double>(number, range.minimum, range.maximum)));
}

} // namespace

ProcessorState::ProcessorState(const juce::Identifier& type, const core::IComponentFactory* componentFactory,
                               core::ISupportedLayouts* supportedLayouts)
    : type(type),
      speakerSetup(componentFactory->createSelectorValue(core::selectorId(defaultLayout))),
      scene(componentFactory->createSelectorValue(core::selectorId(core::Scene::defaultName))),
      ambience(componentFactory->createSliderValue(50.0f)),
      focus(componentFactory->createSliderValue(0.0f)),
      headRotation(componentFactory->createAtomicSliderValue(0.0f)),
      masterGain(componentFactory->createSliderValue(0.0f)),
      speakerSetupFallback(componentFactory->createSpeakerSetupFallback(supportedLayouts)),
      sceneFallback(componentFactory->createSceneFallback()) {}

juce::ValueTree ProcessorState::toValueTree() const {
    juce::ValueTree root(type);
    const auto speakerSetupTree = child(speakerSetupType, asSignedNumber(speakerSetup->getValue()));
    const auto sceneTree = child(sceneType, asSignedNumber(scene->getValue()));
    const auto headRotationTree = child(headRotationType, headRotation->getValue());
    const auto masterGainTree = child(masterGainType, masterGain->getValue());
    const auto focusTree = child(focusType, focus->getValue());
    const auto ambienceTree = child(ambienceType, ambience->getValue());
    for (const auto& tree :
         {speakerSetupTree, sceneTree, ambienceTree, headRotationTree, focusTree, masterGainTree})
        root.appendChild(tree, nullptr);
    return root;
}

void ProcessorState::fromValueTree(const juce::ValueTree& tree) {
    if (!tree.hasType(type))
        return;
    // The Scene comes after the layout, gains last: each write may ask for a rebuild or push values.
    speakerSetup->setValue(speakerSetupFallback->fallback(readIdentifier(tree, speakerSetupType)));
    scene->setValue(sceneFallback->fallback(readIdentifier(tree, sceneType)));
    readNumber(tree, ambienceType, ambienceRange, *ambience);
    readNumber(tree, focusType, focusRange, *focus);
    readNumber(tree, headRotationType, headRotationRange, *headRotation);
    readNumber(tree, masterGainType, masterGainRange, *masterGain);
}

} // namespace orvane::kestrum
