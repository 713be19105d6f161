// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IInPlaceProcessor.h"
#include "base/ISpatialProcessor.h"
#include "base/SampleBuffer.h"
#include "binaural/IBinauralProcessorBuilder.h"
#include "binaural/IConvolution.h"
#include "binaural/IResponseStage.h"
#include "binaural/IUpdateChecker.h"
#include "binaural/RenderOptions.h"
#include "binaural/ResponseKey.h"
#include "engine/fades/ICrossFader.h"
#include "parameters/ISpatialParameterSetView.h"
#include "parameters/IViewSnapshot.h"

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
/// On the fast path a response that would come out as it is already is not drawn again. The block is then the
/// same in every bit: old and new output are one, and the crossfade is still worked out, since x * r +
/// (1 - r) * x is not x in 32 bits.
///
/// Thread  constructed on a building thread, process() on the audio thread.
class BinauralProcessor final : public ISpatialProcessor {
public:
    /// @param extraLength samples of room behind the response; one block.
    /// @param hardSwitch replaces a changed response without a crossfade.
    /// @param view borrowed.
    /// @param snapshot what the stages and `view` read from, if it is one: taken before every block. While it
    ///        stays the same the stages are not even asked.
    BinauralProcessor(std::uint64_t extraLength, bool hardSwitch, ISpatialParameterSetView* view,
                      const IBinauralProcessorBuilder& builder, RenderPath path = RenderPath::fast,
                      std::unique_ptr<IViewSnapshot> snapshot = nullptr);

    /// Errors  std::out_of_range when the response is shorter than its tail ramp of 15 samples.
    void process(const SampleBuffer& input, SampleBuffer& output) ORVANE_REALTIME override;

private:
    bool drawWhatChanged() ORVANE_REALTIME;
    bool describeResponse() ORVANE_REALTIME;
    bool drawDescribed() ORVANE_REALTIME;
    void drawEverything() ORVANE_REALTIME;
    float attenuation() noexcept ORVANE_REALTIME;

    std::unique_ptr<IViewSnapshot> snapshot; ///< May be null. Outlives what reads from it.
    bool hardSwitch;
    std::uint64_t responseLength;
    ISpatialParameterSetView* view;
    std::unique_ptr<IUpdateChecker> updateChecker;
    std::unique_ptr<ICrossFader> crossFader;
    std::unique_ptr<IConvolution> convolution;
    SampleBuffer responseBuffer; ///< [2][responseLength + extraLength]
    std::vector<std::unique_ptr<IInPlaceProcessor>> stages;
    std::vector<IResponseStage*> describing; ///< All of `stages`, or empty: everything in every block.
    ResponseKey described;
    ResponseKey drawn;          ///< What `responseBuffer` holds, while `drawnIsValid`.
    bool drawnIsValid = false;  ///< Not before the first drawing, nor after one that went wrong.
    bool mayHaveChanged = true; ///< Something was taken that the stages have not been asked about.
    float attenuationDb = 0;    ///< As last seen.
    float attenuationGain;      ///< What it means.
};

} // namespace orvane
