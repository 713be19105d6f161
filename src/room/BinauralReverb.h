// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ISpatialProcessor.h"
#include "base/SampleBuffer.h"
#include "binaural/IConvolution.h"
#include "filters/IChannelProcessor.h"
#include "parameters/IReverbParameterSet.h"
#include "room/IBinauralReverbBuilder.h"
#include "room/IReverbFilter.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace orvane {

/// The late reverb: a mono signal, limited to a band, convolved with the room's stereo response and scaled.
///
/// Thread  constructed on a building thread, process() on the audio thread.
class BinauralReverb final : public ISpatialProcessor {
public:
    /// Distance in metres and its scale to a linear level.
    using DistanceLaw = std::function<float(float, float)>;

    /// Units   blockSize in samples.
    /// @param view borrowed.
    /// @param expectedDecay percent; the response for it is drawn now, so that a first block which finds it need
    ///        not. Without it nothing is drawn.
    BinauralReverb(std::uint64_t blockSize, IReverbParameterView* view,
                   std::unique_ptr<IReverbFilter> reverbFilter, const IBinauralReverbBuilder& builder,
                   DistanceLaw distanceLaw, std::optional<float> expectedDecay = std::nullopt);

    /// Channel 0 of `input`, at least a block of it, is filtered where it lies. An input without channels or
    /// samples gives silence.
    void process(const SampleBuffer& input, SampleBuffer& output) ORVANE_REALTIME override;
    void workAhead(std::uint64_t pendingSamples) ORVANE_REALTIME override;

private:
    void applyGain(SampleBuffer& output) ORVANE_REALTIME;

    std::uint64_t blockSize;
    IReverbParameterView* view;
    std::unique_ptr<IChannelProcessor> inputFilters;
    std::unique_ptr<IConvolution> convolution;
    std::unique_ptr<IReverbFilter> reverbFilter;
    DistanceLaw distanceLaw;
    float smoothedGain = 1.0f;
    SampleBuffer impulseResponse; ///< [2][partitions + 1 block], what the convolver takes its spectra from.
};

/// Level of the reverb over the distance of the sources: 1 up to 15 metres, 0 from 40 on.
///
/// Units   metres, and the factor on them.
/// Source  chosen by ear; continuous at 15 metres, with a step in slope at 30.
float reverbDistanceLaw(float distance, float distanceScale) noexcept ORVANE_REALTIME;

} // namespace orvane
