// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IInPlaceProcessor.h"
#include "base/ISpatialProcessor.h"
#include "base/SampleBuffer.h"
#include "binaural/IBinauralProcessorBuilder.h"
#include "binaural/IConvolution.h"
#include "binaural/IUpdateChecker.h"
#include "binaural/RenderOptions.h"
#include "engine/fades/ICrossFader.h"
#include "parameters/ISpatialParameterSetView.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace orvane {

/// The signal of one virtual loudspeaker in, its headphone stereo out.
///
///     stages (direct sound, reflections) draw the response for the present direction
///            |
///            v
///     mono block --> convolution, old and new response --> crossfade --> gain --> stereo block
///
/// There is no interpolation between responses and no smoothing of the direction: the crossfade in every
/// block is what keeps changes free of clicks.
///
/// Thread  constructed on a building thread, process() on the audio thread.
class BinauralProcessor final : public ISpatialProcessor {
public:
    /// @param extraLength samples of room behind the response; one block.
    /// @param hardSwitch replaces a changed response without a crossfade.
    /// @param view borrowed.
    BinauralProcessor(std::uint64_t extraLength, bool hardSwitch, ISpatialParameterSetView* view,
                      const IBinauralProcessorBuilder& builder, RenderPath path = RenderPath::fast);

    /// Errors  std::out_of_range when the response is shorter than its tail ramp of 15 samples.
    void process(const SampleBuffer& input, SampleBuffer& output) ORVANE_REALTIME override;

private:
    void drawResponse() ORVANE_REALTIME;

    RenderPath path;
    bool hardSwitch;
    std::uint64_t responseLength;
    ISpatialParameterSetView* view;
    std::unique_ptr<IUpdateChecker> updateChecker;
    std::unique_ptr<ICrossFader> crossFader;
    std::unique_ptr<IConvolution> convolution;
    SampleBuffer responseBuffer; ///< [2][responseLength + extraLength]
    std::vector<std::unique_ptr<IInPlaceProcessor>> stages;
};

} // namespace orvane
