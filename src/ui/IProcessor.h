// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/IBusesLayout.h"
#include "core/IHeadRotationAccessor.h"

namespace juce {
class AudioProcessor;
}

namespace orvane::kestrum {

class IProcessorState;

/// The plug-in as its editor sees it.
///
/// Thread  message thread; hasError() from any.
class IProcessor : public core::IBusesLayout, public core::IHeadRotationAccessor {
public:
    virtual juce::AudioProcessor* getAudioProcessor() = 0;

    /// The six user values; never null, lives as long as the processor.
    virtual IProcessorState* getProcessorState() = 0;

    /// True from a failed preparation until the next one that succeeds; the output is muted meanwhile.
    virtual bool hasError() const noexcept = 0;
};

} // namespace orvane::kestrum
