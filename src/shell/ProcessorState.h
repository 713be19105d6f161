// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IComponentFactory.h"
#include "parameters/core/ISelectorFallback.h"
#include "parameters/core/ISelectorValue.h"
#include "parameters/core/ISliderValue.h"
#include "ui/IProcessorState.h"

#include <memory>

namespace orvane::kestrum {

/// Owns the six user values.
///
/// Form of the tree, in which a session keeps them:
///
///     <ORVANEKESTRUM>
///       <SpeakerSetup Value="identifier as signed 32-bit number"/>
///       <Scene Value="identifier"/>
///       <Ambience Value="0 to 100"/>
///       <HeadRotation Value="-180 to 180"/>
///       <Focus Value="-100 to 100"/>
///       <MasterGain Value="-96 to 24"/>
///     </ORVANEKESTRUM>
///
/// There is no version: the identifiers carry the meaning, and a changed name would be a new identifier.
class ProcessorState final : public IProcessorState {
public:
    /// @param type root type of the tree.
    /// @param componentFactory borrowed, only used inside the constructor.
    /// @param supportedLayouts borrowed, outlives the state.
    ProcessorState(const juce::Identifier& type, const core::IComponentFactory* componentFactory,
                   core::ISupportedLayouts* supportedLayouts);

    juce::ValueTree toValueTree() const override;
    void fromValueTree(const juce::ValueTree& tree) override;

    core::ISelectorValue* getSpeakerSetup() override { return speakerSetup.get(); }
    core::ISelectorValue* getScene() override { return scene.get(); }
    core::ISliderValue* getHeadRotation() override { return headRotation.get(); }
    core::ISliderValue* getMasterGain() override { return masterGain.get(); }
    core::ISliderValue* getFocus() override { return focus.get(); }
    core::ISliderValue* getAmbience() override { return ambience.get(); }

private:
    juce::Identifier type;
    std::unique_ptr<core::ISelectorValue> speakerSetup;
    std::unique_ptr<core::ISelectorValue> scene;
    std::unique_ptr<core::ISliderValue> ambience;
    std::unique_ptr<core::ISliderValue> focus;
    std::unique_ptr<core::ISliderValue> headRotation; ///< Atomic: the only one that the audio thread reads.
    std::unique_ptr<core::ISliderValue> masterGain;
    std::unique_ptr<core::ISelectorFallback> speakerSetupFallback;
    std::unique_ptr<core::ISelectorFallback> sceneFallback;
};

} // namespace orvane::kestrum
