// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/SelectorParameterPresenter.h"

#include "parameters/core/SelectorId.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace orvane::kestrum {

namespace {

/// Truncates towards the lower entry and never leaves the list. Zero for an empty list, too.
std::size_t entryOf(float unnormalised, std::size_t nameCount) noexcept {
    const auto index = static_cast<std::size_t>(std::max(0.0f, unnormalised));
    return nameCount < 2 ? 0 : std::min(index, nameCount - 1);
}

} // namespace

SelectorParameterPresenter::SelectorParameterPresenter(const juce::String& name, core::ISelectorValue* value,
                                                       std::vector<std::string> entryNames)
    : value(value), names(std::move(entryNames)) {
    std::ranges::transform(names, std::back_inserter(ids),
                           [](const std::string& entry) { return core::selectorId(entry); });
    const float end = names.size() > 2 ? static_cast<float>(names.size() - 1) : 1.0f;
    // The text function keeps its own names: the parameter may be asked as long as its owner lives.
    const auto toText = [texts = names](float unnormalised, int) {
        return texts.empty() ? juce::String()
                             : juce::String::fromUTF8(texts[entryOf(unnormalised, texts.size())].c_str());
    };
    parameter = std::make_unique<Parameter>(juce::ParameterID(name), name,
                                            juce::NormalisableRange<float>(0.0f, end, 1.0f, 1.0f, false),
                                            static_cast<float>(indexOf(value->getValue())),
                                            juce::AudioProcessorValueTreeStateParameterAttributes()
                                                .withStringFromValueFunction(toText)
                                                .withMeta(false)
                                                .withAutomatable(false)
                                                .withDiscrete(true));
    value->addListener(this);
    parameter->addListener(this);
    SelectorParameterPresenter::valueChanged();
}

SelectorParameterPresenter::~SelectorParameterPresenter() {
    parameter->removeListener(this);
    value->removeListener(this);
    if (released)
        static_cast<void>(parameter.release());
}

juce::AudioProcessorParameter* SelectorParameterPresenter::releaseParameter() {
    released = true;
    return parameter.get();
}

void SelectorParameterPresenter::valueChanged() {
    const std::uint32_t id = value->getValue();
    if (currentId == id)
        return;
    currentId.exchange(id);
    parameter->setValueNotifyingHost(normalised(indexOf(id)));
}

void SelectorParameterPresenter::parameterValueChanged(int, float newValue) {
    if (!std::isfinite(newValue)) {
        // The parameter has taken the nonsense in; what it stands for has not.
        parameter->setValueNotifyingHost(normalised(indexOf(value->getValue())));
        return;
    }
    if (ids.empty())
        return;
    // Deliberate: the raw value, not the parameter's own, which is snapped to the nearest entry.
    const float unnormalised = parameter->range.convertFrom0to1(std::clamp(newValue, 0.0f, 1.0f));
    currentId.exchange(ids[entryOf(unnormalised, ids.size())]);
    value->setValue(currentId);
}

std::size_t SelectorParameterPresenter::indexOf(std::uint32_t id) const noexcept {
    const auto found = std::ranges::find(ids, id);
    return found != ids.end() ? static_cast<std::size_t>(found - ids.begin()) : 0;
}

float SelectorParameterPresenter::normalised(std::size_t index) const noexcept {
    return names.size() < 2 ? 0.0f : static_cast<float>(index) / static_cast<float>(names.size() - 1);
}

} // namespace orvane::kestrum
