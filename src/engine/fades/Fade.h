// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IFade.h"
#include "base/Realtime.h"

namespace orvane {

/// A one-shot linear gain ramp over a stream of blocks. Once finished it stays finished.
///
/// In 32-bit float the ramp reaches its target after the nominal count of samples or one less.
/// Thread  constructed on a building thread, apply() on the audio thread.
class Fade final : public IFade {
public:
    /// Units   milliseconds; sampleRate in hertz; start and target are linear gains.
    Fade(float milliseconds, float sampleRate, float start, float target) noexcept;

    /// A finished fade-in to 1 costs nothing; a fade that has ended elsewhere goes on multiplying by its
    /// target.
    void apply(SampleBuffer& buffer) ORVANE_REALTIME override;

private:
    bool rising;
    float step; ///< Per sample.
    float current;
    float target;
};

} // namespace orvane
