// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/core/ISelectorValue.h"
#include "ui/IParameterPresenter.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace orvane::kestrum {

/// Joins a selector value to a host parameter whose unnormalised value is the index of a name.
///
/// Thread  constructed and destroyed on a setup thread; changes arrive on whatever thread makes them. The
/// atomic
///         cache ends the loop: what a host writes is in it before the value calls back.
class SelectorParameterPresenter final : public IParameterPresenter,
                                         private core::ISelectorValue::Listener,
                                         private juce::AudioProcessorParameter::Listener {
public:
    /// @param value borrowed, outlives the presenter.
    /// @param names UTF-8, in the order of the parameter's entries; hashed here, once.
    SelectorParameterPresenter(const juce::String& name, core::ISelectorValue* value,
                               std::vector<std::string> names);
    ~SelectorParameterPresenter() override;
    SelectorParameterPresenter(const SelectorParameterPresenter&) = delete;
    SelectorParameterPresenter& operator=(const SelectorParameterPresenter&) = delete;

    juce::AudioProcessorParameter* releaseParameter() override;

private:
    using Parameter = juce::AudioProcessorValueTreeState::Parameter;

    void valueChanged() override;
    void parameterValueChanged(int parameterIndex, float newValue) override;
    void parameterGestureChanged(int, bool) override {}

    std::size_t indexOf(std::uint32_t id) const noexcept;
    float normalised(std::size_t index) const noexcept;

    core::ISelectorValue* value;
    std::vector<std::string> names;
    std::vector<std::uint32_t> ids; ///< [names], their identifiers.
    std::unique_ptr<Parameter> parameter;
    std::atomic<std::uint32_t> currentId{0};
    bool released = false;
};

} // namespace orvane::kestrum
