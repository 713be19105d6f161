// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/Measurement.h"

#include "render/RenderError.h"

#include <ebur128.h>

#include <algorithm>
#include <cmath>

namespace orvane::kestrum::render {

struct Measurement::State {
    explicit State(unsigned sampleRate) : meter(ebur128_init(2, sampleRate, EBUR128_MODE_I)) {
        if (meter == nullptr)
            throw RenderError("The loudness meter does not work at " + std::to_string(sampleRate) +
                              " Hz: resample the input.");
    }
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() { ebur128_destroy(&meter); }

    ebur128_state* meter;
};

Measurement::Measurement(unsigned sampleRate, IAudioSink& next)
    : state(std::make_unique<State>(sampleRate)), next(next) {}

Measurement::~Measurement() = default;

void Measurement::write(std::span<const float> interleaved) {
    for (const float sample : interleaved) {
        allFinite = allFinite && std::isfinite(sample);
        highest = std::max(highest, std::abs(sample));
    }
    if (ebur128_add_frames_float(state->meter, interleaved.data(), interleaved.size() / 2) != EBUR128_SUCCESS)
        throw RenderError("The loudness meter ran out of memory: close other programs.");
    next.write(interleaved);
}

float Measurement::peak() const { return highest; }
bool Measurement::finite() const { return allFinite; }

std::optional<double> Measurement::integratedLoudness() const {
    double loudness = 0;
    if (ebur128_loudness_global(state->meter, &loudness) != EBUR128_SUCCESS || !std::isfinite(loudness))
        return std::nullopt;
    return loudness;
}

} // namespace orvane::kestrum::render
