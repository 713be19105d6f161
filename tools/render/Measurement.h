// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/AudioStreams.h"

#include <memory>
#include <optional>

namespace orvane::kestrum::render {

/// A sink that measures what passes on its way to another sink.
class Measurement final : public IAudioSink {
public:
    /// @param next outlives this object.
    Measurement(unsigned sampleRate, IAudioSink& next);
    ~Measurement() override;

    void write(std::span<const float> interleaved) override;

    float peak() const;  ///< Highest absolute sample; full scale is 1.
    bool finite() const; ///< False once a not-a-number or infinity has passed.
    /// Integrated loudness by EBU R 128 in LUFS; empty when all of it lies under the gate.
    std::optional<double> integratedLoudness() const;

private:
    struct State;
    std::unique_ptr<State> state;
    IAudioSink& next;
    float highest = 0;
    bool allFinite = true;
};

} // namespace orvane::kestrum::render
