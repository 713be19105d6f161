// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IComponentFactory.h"
#include "base/IHrir.h"
#include "base/SampleBuffer.h"
#include "binaural/ClarifiedHrir.h"
#include "binaural/IBinauralComponentFactory.h"
#include "binaural/IResponseStage.h"
#include "filters/IGenericBiquadFilter.h"
#include "parameters/core/ISpeakerParameterSetView.h"
#include "room/IReflectionMechanic.h"
#include "room/SampleShifter.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace orvane::kestrum::core {

/// As the general reflection renderer, with clarity and a high pass for each reflection, and limited to the
/// six first-order reflections within 4096 samples, which bounds the cost of sixteen loudspeakers.
///
///     store --> clarity --> gain --> low pass --> high pass --> end ramp --> delay --> added to the buffer
///               |<------------------- kept per reflection ----------->|
///
/// draw() keeps what a reflection looks like before its delay, and works out anew only those that a turned head
/// has taken to another cell of the store.
///
/// Shape   buffer [2][response], left and right ear.
/// Thread  constructed on a building thread, then the audio thread.
class ReflectionRenderer final : public IResponseStage {
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
    void describe(ResponseKey& key) ORVANE_REALTIME override;
    bool draw(SampleBuffer& buffer) ORVANE_REALTIME override;

private:
    static constexpr std::size_t reflectionLimit = 6;

    /// What shapes all reflections alike. Hertz; `headLength` in samples.
    struct Common {
        std::uint64_t generation = 0;
        std::uint64_t headLength = 0; ///< Of the store now, where the end ramp lies.
        float clarity = 0;
        float lowPass = 0;
        float highPass = 0;
    };

    /// A reflection before its delay.
    struct Piece {
        ResponseKey key;
        bool valid = false;
        SampleBuffer samples; ///< [2][HRIR]
    };

    /// Samples of the buffer, from one to before another.
    struct Range {
        std::uint64_t begin = 0;
        std::uint64_t end = 0;
    };

    Common present() const ORVANE_REALTIME;
    std::size_t heardCount() const noexcept ORVANE_REALTIME;
    ResponseKey pieceKey(const Reflection& reflection, std::uint64_t generation) const ORVANE_REALTIME;
    void add(const Reflection& reflection, const Common& common, SampleBuffer& buffer) ORVANE_REALTIME;
    void shape(const Reflection& reflection, const Common& common) ORVANE_REALTIME;
    bool refresh(Piece& piece, const Reflection& reflection) ORVANE_REALTIME;
    Range addPiece(const Piece& piece, std::int32_t delay, Range doubtful,
                   SampleBuffer& buffer) const ORVANE_REALTIME;

    std::int64_t maxDelay; ///< Samples: the reachable part of a response minus an HRIR.
    ISpeakerParameterSetView* view;
    IHrir* hrir;
    ClarifiedHrir response;
    std::unique_ptr<IReflectionMechanic> mechanic;
    ReflectionList reflections; ///< Delays in it live on from block to block.
    SampleBuffer hrirBuffer;    ///< [2][HRIR], one reflection before its ramp and delay.
    SampleBuffer delayBuffer;   ///< [2][HRIR + maxDelay], behind them.
    SampleShifter shifter;
    std::unique_ptr<IGenericBiquadFilter> highPass;
    std::array<std::unique_ptr<IGenericBiquadFilter>, 2> filters;
    Common described;
    SampleBuffer rampBuffer; ///< [2][HRIR + maxDelay], all zeros behind an HRIR: a ramp wants room behind it.
    std::array<Piece, reflectionLimit> pieces; ///< By place in the list.
};

} // namespace orvane::kestrum::core
