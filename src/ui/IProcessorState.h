// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_data_structures/juce_data_structures.h>

namespace orvane::kestrum {

namespace core {
class ISelectorValue;
class ISliderValue;
} // namespace core

/// The six user values, and the tree in which a host's session keeps them.
///
/// Thread  setup threads; the values themselves as their interfaces say.
class IProcessorState {
public:
    virtual ~IProcessorState() = default;

    virtual juce::ValueTree toValueTree() const = 0;

    /// Takes over all values of a tree that toValueTree() made, also of an older version: unknown names
    /// become the defaults, numbers that are missing become 0, numbers that are not finite change nothing. A
    /// tree of another type changes nothing.
    virtual void fromValueTree(const juce::ValueTree& tree) = 0;

    // Never null; they live as long as the state.
    virtual core::ISelectorValue* getSpeakerSetup() = 0;
    virtual core::ISelectorValue* getScene() = 0;
    virtual core::ISliderValue* getHeadRotation() = 0; ///< Degrees, -180 to 180.
    virtual core::ISliderValue* getMasterGain() = 0;   ///< Decibels, -96 to 24.
    virtual core::ISliderValue* getFocus() = 0;        ///< -100 to 100.
    virtual core::ISliderValue* getAmbience() = 0;     ///< Percent.
};

} // namespace orvane::kestrum
