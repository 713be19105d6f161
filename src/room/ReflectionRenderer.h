// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IHrir.h"
#include "base/IInPlaceProcessor.h"
#include "base/SampleBuffer.h"
#include "filters/IBiquadFilter.h"
#include "filters/IBiquadFilterFactory.h"
#include "parameters/ISpatialParameterSetView.h"
#include "room/IReflectionMechanic.h"
#include "room/SampleShifter.h"

#include <array>
#include <cstdint>
#include <memory>

namespace orvane {

/// Adds a delayed, low-passed, scaled HRIR to a response for each reflection of a room.
///
/// Shape   buffer [2][response], left and right ear.
/// Thread  constructed on a building thread, process() on the audio thread.
class ReflectionRenderer final : public IInPlaceProcessor {
public:
    /// Units   sampleRate in hertz, responseLength in samples.
    /// @param view, hrir borrowed.
    /// @param simple true for the synthetic responses.
    ReflectionRenderer(float sampleRate, std::uint64_t responseLength, bool simple,
                       ISpatialParameterSetView* view, IHrir* hrir,
                       std::unique_ptr<IReflectionMechanic> mechanic, IBiquadFilterFactory* filterFactory);

    void process(SampleBuffer& buffer) ORVANE_REALTIME override;

private:
    void add(const Reflection& reflection, SampleBuffer& buffer) ORVANE_REALTIME;

    std::int64_t maxDelay; ///< Samples: a response minus an HRIR.
    bool simple;
    IHrir* hrir;
    ISpatialParameterSetView* view;
    std::unique_ptr<IReflectionMechanic> mechanic;
    ReflectionList reflections; ///< Delays in it live on from block to block.
    std::array<std::unique_ptr<IBiquadFilter>, 2> filters;
    SampleBuffer scratch; ///< [2][maxDelay + response], one reflection.
    SampleShifter shifter;
};

} // namespace orvane
