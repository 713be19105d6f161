// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IComponentFactory.h"
#include "base/IHrir.h"
#include "base/IInPlaceProcessor.h"
#include "base/SampleBuffer.h"
#include "binaural/IBinauralComponentFactory.h"
#include "filters/IGenericBiquadFilter.h"
#include "parameters/core/ISpeakerParameterSetView.h"
#include "room/IReflectionMechanic.h"
#include "room/SampleShifter.h"

#include <array>
#include <cstdint>
#include <memory>

namespace orvane::kestrum::core {

/// As the general reflection renderer, with clarity and a high pass for each reflection, and limited to the
/// six first-order reflections within 4096 samples, which bounds the cost of sixteen loudspeakers.
///
/// Shape   buffer [2][response], left and right ear.
/// Thread  constructed on a building thread, process() on the audio thread.
class ReflectionRenderer final : public IInPlaceProcessor {
public:
    /// Units   sampleRate in hertz, responseLength in samples.
    /// @param view, hrir borrowed.
    /// @param simple true for the synthetic responses.
    ReflectionRenderer(float sampleRate, std::uint64_t responseLength, bool simple,
                       ISpeakerParameterSetView* view, IHrir* hrir,
                       std::unique_ptr<IReflectionMechanic> mechanic,
                       const IBinauralComponentFactory& binauralFactory,
                       const IComponentFactory& componentFactory);

    void process(SampleBuffer& buffer) ORVANE_REALTIME override;

private:
    void add(const Reflection& reflection, SampleBuffer& buffer) ORVANE_REALTIME;

    std::int64_t maxDelay; ///< Samples: the reachable part of a response minus an HRIR.
    bool simple;
    ISpeakerParameterSetView* view;
    std::unique_ptr<IInPlaceProcessor> clarity;
    IHrir* hrir;
    float clarityAmount = 0; ///< Read by `clarity`.
    std::unique_ptr<IReflectionMechanic> mechanic;
    ReflectionList reflections; ///< Delays in it live on from block to block.
    SampleBuffer hrirBuffer;    ///< [2][HRIR], one reflection before its delay.
    SampleBuffer delayBuffer;   ///< [2][HRIR + maxDelay], behind it.
    SampleShifter shifter;
    std::unique_ptr<IGenericBiquadFilter> highPass;
    std::array<std::unique_ptr<IGenericBiquadFilter>, 2> filters;
};

} // namespace orvane::kestrum::core
