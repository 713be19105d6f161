// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/IPlugin.h"
#include "render/AudioStreams.h"
#include "render/Automation.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace orvane::kestrum::render {

/// How a prepared plug-in is fed.
struct RenderPlan {
    double sampleRate = 0;
    std::uint32_t block = 512; ///< Frames; also what the plug-in was prepared for.
    std::optional<std::uint32_t>
        varyingBlocks;               ///< Seed: host blocks of 1 to `block` frames instead of equal ones.
    bool raw = false;                ///< Hand on the plug-in's stream as it is, in whole blocks.
    bool realtime = false;           ///< Feed no faster than the clock.
    double settleMilliseconds = 250; ///< Pause after a change for which the plug-in builds a new engine.
    std::vector<AutomationEvent> automation; ///< In time order.
};

/// What a rendering took.
struct RenderFacts {
    std::uint64_t fedFrames = 0; ///< Frames that the plug-in was given, silence behind the input included.
    std::uint64_t writtenFrames = 0;
    std::uint64_t delayRemoved = 0;
    std::uint64_t blockCount = 0; ///< Calls of the plug-in.
    double meanLoad = 0;          ///< Time inside the plug-in as a share of the sound's duration.
    double worstLoad = 0;         ///< The longest call as a share of a whole block's duration.
};

/// Told now and then how far the input is through, 0 to 1.
using Progress = std::function<void(double)>;

/// Feeds the whole source through a prepared plug-in with two outputs.
///
/// A parameter change takes effect exactly at its frame: the host block is cut there. So the result does not
/// depend on how the stream is cut into blocks, as long as the pause lets every rebuild end.
///
/// Without `raw` the real delay, one internal block of the plug-in, is taken off. It equals the block it was
/// prepared for; what it reports as latency is the next power of two.
RenderFacts renderStream(host::IPlugin& plugin, IAudioSource& source, IAudioSink& sink,
                         const RenderPlan& plan, const Progress& progress = {});

} // namespace orvane::kestrum::render
