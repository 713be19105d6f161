// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IEngine.h"
#include "base/Realtime.h"

#include <atomic>
#include <cstdint>
#include <memory>

namespace orvane {

/// Hands an engine from the threads that build to the one audio thread that renders.
///
/// The standard library's atomic shared pointers take a lock inside, so ownership and publication are kept
/// apart: writers hold the shared pointer, the reader sees a raw pointer and announces when it enters and
/// leaves.
///
///     writer:  publish the next pointer ......... then look at the turn; odd: wait until it moves on
///     reader:  make the turn odd ... read the pointer ... use it ... make the turn even
///
/// Both first steps and both looks are sequentially consistent, so either the writer sees the odd turn or the
/// reader sees the next pointer; a former engine is never in use once exchange() has returned.
///
/// Thread  Reader: one audio thread at a time, wait-free (two stores and a load).
///         exchange() and current(): writers that their owner keeps apart; exchange() waits for at most the
///         rest of the reader's block.
class EngineHandover {
public:
    EngineHandover() = default;
    explicit EngineHandover(std::shared_ptr<IEngine> first) noexcept;
    EngineHandover(const EngineHandover&) = delete;
    EngineHandover& operator=(const EngineHandover&) = delete;

    /// Holds the published engine for the length of a scope on the audio thread. Scopes of one handover do
    /// not nest.
    class Reader {
    public:
        explicit Reader(EngineHandover& source) noexcept ORVANE_REALTIME;
        ~Reader();
        Reader(const Reader&) = delete;
        Reader& operator=(const Reader&) = delete;

        /// Null when nothing is published.
        IEngine* engine() const noexcept ORVANE_REALTIME { return held; }

    private:
        EngineHandover& handover;
        IEngine* held;
    };

    /// Publishes `next` (may be null) and returns the former engine, which the audio thread no longer uses.
    std::shared_ptr<IEngine> exchange(std::shared_ptr<IEngine> next) noexcept;

    /// The engine that is published, for writers.
    std::shared_ptr<IEngine> current() const noexcept { return owner; }

private:
    std::shared_ptr<IEngine> owner;
    std::atomic<IEngine*> published{nullptr};
    std::atomic<std::uint64_t> turn{0}; ///< Odd while the reader is inside.
};

} // namespace orvane
