// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/EngineHandover.h"
#include "engine/IEngineFactory.h"
#include "engine/IEngineManager.h"
#include "parameters/IReloadNotifier.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace orvane {

/// Keeps one engine in service and rebuilds it in the background when a structural parameter changes.
///
///     parameter change --> reloadRequested(): sets a flag
///     background task  --> polls the flag every half block; builds, wraps old and new, publishes
///     audio thread     --> runs whatever is published
///
/// Changes that come faster than fades end nest, up to a bound: beyond it a request waits for a fade to end. Each engine
/// in the chain renders every block, and a block that takes longer lets more changes come before the next.
///
/// A rebuild that fails ends the background task; the last engine plays on with the old structure.
class EngineManager final : public IEngineManager, public IReloadListener {
public:
    /// @param reloadNotifier borrowed; tells of structural changes.
    /// @throws std::system_error when the background task cannot be started.
    EngineManager(std::unique_ptr<IEngineFactory> engineFactory, IReloadNotifier* reloadNotifier);

    /// Waits for the background task: at most half a block, or a rebuild that is under way.
    ~EngineManager() override;
    EngineManager(const EngineManager&) = delete;
    EngineManager& operator=(const EngineManager&) = delete;

    void prepare(std::uint64_t blockSize, double sampleRate) override;
    void release() override;
    void process(const SampleBuffer& input, SampleBuffer& output) ORVANE_REALTIME override;
    void setMuted(bool muted) noexcept override;

    /// Thread  any. Requests that come before the next poll merge into one rebuild.
    void reloadRequested() override;

private:
    void runInBackground();
    void rebuild();
    bool isAnotherFadeTooMany();

    std::unique_ptr<IEngineFactory> engineFactory;
    EngineHandover engine;
    std::uint64_t blockSize = 512; ///< Guarded by `mutex`.
    double sampleRate = 44100.0;   ///< Guarded by `mutex`.
    std::atomic<bool> reloadPending{false};
    std::atomic<std::int64_t> pollPeriod; ///< Microseconds: half a block.
    std::atomic<bool> muted{false};
    std::atomic<bool> prepared{false};
    std::atomic<bool> running{true};
    std::vector<std::weak_ptr<IEngine>> fadingOut; ///< Engines behind newer ones; guarded by `mutex`.
    std::mutex mutex; ///< Keeps prepare, release and a rebuild apart; the audio thread never takes it.
    IReloadNotifier* reloadNotifier;
    std::thread backgroundTask;
};

} // namespace orvane
