// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Processor.h"

/// The framework's hook: one processor per plug-in instance, owned by the caller.
juce::AudioProcessor* JUCE_CALLTYPE createPluginFilter();

juce::AudioProcessor* JUCE_CALLTYPE createPluginFilter() { return new orvane::kestrum::Processor(); }
