// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <memory>
#include <string>
#include <vector>

namespace orvane::kestrum {

namespace core {
class ISelectorValue;
class ISliderValue;
class ISupportedLayouts;
} // namespace core

class IParameterPresenter;
class IProcessorState;

/// Makes the objects that name the framework. Raw pointers are borrowed, never null, and have to outlive what
/// is made.
///
/// Thread  message or setup thread.
class IFactory {
public:
    virtual ~IFactory() = default;

    /// @param type root type of the state's tree.
    virtual std::unique_ptr<IProcessorState>
    createProcessorState(const juce::Identifier& type, core::ISupportedLayouts* supportedLayouts) const = 0;

    virtual std::unique_ptr<IParameterPresenter>
    createSelectorParameterPresenter(const juce::String& name, core::ISelectorValue* value,
                                     std::vector<std::string> names) const = 0;

    virtual std::unique_ptr<IParameterPresenter> createSliderParameterPresenter(const juce::String& name,
                                                                                core::ISliderValue* value,
                                                                                float minimum, float maximum,
                                                                                float step) const = 0;
};

} // namespace orvane::kestrum
