// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Processor.h"

namespace orvane::kestrum {

Processor::Processor() = default;

juce::AudioProcessorEditor* Processor::createEditor() { return new juce::GenericAudioProcessorEditor(*this); }

} // namespace orvane::kestrum
