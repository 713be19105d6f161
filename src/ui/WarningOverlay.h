// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace orvane::kestrum {

/// Lies over all controls and takes their clicks while the output is muted by an error, and says what to do.
///
/// Thread  message thread.
class WarningOverlay final : public juce::Component {
public:
    void paint(juce::Graphics& g) override;
};

} // namespace orvane::kestrum
