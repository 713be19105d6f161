// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/AudioStreams.h"

#include <cstdint>
#include <span>
#include <vector>

namespace orvane::kestrum::render {

/// Takes the delay off the plug-in's stream and keeps the tail behind the input's end until it has died away.
///
///     stream:  | delay | as long as the input | tail .... below the floor for `quietLength` |
///     result:          | as long as the input | tail |
///
/// Units   lengths in frames; the floor lies 90 dB under the highest sample of the result.
class StreamTrimmer {
public:
    struct Lengths {
        std::uint64_t delay = 0;
        std::uint64_t input = 0;
        std::uint64_t quiet = 1;   ///< How long the tail has to stay under the floor to count as over.
        std::uint64_t tailMax = 0; ///< A tail is cut here even if it still sounds.
    };

    /// @param sink outlives the trimmer.
    StreamTrimmer(const Lengths& lengths, IAudioSink& sink) : lengths(lengths), sink(sink) {}

    /// Takes the next frames, [frames][2] interleaved.
    void push(std::span<const float> stream);
    /// @return true when all of the input and its tail have come out.
    bool finished() const;
    /// Writes the tail up to its last frame above the floor.
    void close();

    std::uint64_t written() const { return writtenFrames; }

private:
    void write(std::span<const float> frames);
    bool aboveFloor(const float* frame) const;

    Lengths lengths;
    IAudioSink& sink;
    std::uint64_t received = 0; ///< Frames of the stream so far.
    std::uint64_t writtenFrames = 0;
    std::uint64_t quietFrames = 0; ///< Frames under the floor up to now.
    float peak = 0;
    std::vector<float> tail; ///< What lies behind the input's end, held until its end is known.
};

} // namespace orvane::kestrum::render
