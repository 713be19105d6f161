// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

namespace orvane {

/// Puts a value into words, and reads them back.
///
/// Thread  message thread.
class IStringValueConverter {
public:
    virtual ~IStringValueConverter() = default;

    virtual juce::String valueToString(double value) const = 0;

    /// @return 0 for a text without a number at its beginning.
    virtual double stringToValue(const juce::String& text) const = 0;
};

} // namespace orvane
