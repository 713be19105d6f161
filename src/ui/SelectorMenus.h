// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ISupportedLayouts.h"

#include <juce_gui_basics/juce_gui_basics.h>

namespace orvane::kestrum {

/// Adds all layouts under their headings, by identifier; those with more channels than the bus are greyed out.
///
/// Thread  message thread.
void fillSpeakerSetup(juce::ComboBox& comboBox, const core::ISupportedLayouts& layouts,
                      int inputChannelCount);

/// Adds the sixteen Scenes under their headings, by identifier.
///
/// Thread  message thread.
void fillScene(juce::ComboBox& comboBox);

} // namespace orvane::kestrum
