// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

#include <cstdint>

namespace orvane {

class SampleBuffer;

/// Owns the engine that the audio thread runs, and replaces it when the structure of the rendering has to
/// change.
class IEngineManager {
public:
    virtual ~IEngineManager() = default;

    /// Builds an engine with the current values and puts it into service. May be repeated at any time.
    ///
    /// Units   blockSize in samples, 2 or more; sampleRate in hertz.
    /// Thread  the host's setup thread, while it does not call process().
    /// Errors  throws whatever building throws, std::invalid_argument for a block size below 2;
    ///         an engine that was in service before stays there.
    virtual void prepare(std::uint64_t blockSize, double sampleRate) = 0;

    /// Takes the engine out of service. Waits for a rebuild that is under way.
    /// Thread  the host's setup thread.
    virtual void release() = 0;

    /// Renders one host block, or silence while there is no engine. `input` and `output` may be views of the
    /// same memory.
    /// Thread  audio thread only; wait-free.
    virtual void process(const SampleBuffer& input, SampleBuffer& output) ORVANE_REALTIME = 0;

    /// While muted the output is silence and the engine does not advance.
    /// Thread  any.
    virtual void setMuted(bool muted) noexcept = 0;
};

} // namespace orvane
