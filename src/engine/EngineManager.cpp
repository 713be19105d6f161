// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/EngineManager.h"

#include "base/SampleBuffer.h"
#include "engine/IPendingFade.h"

#include <chrono>
#include <stdexcept>
#include <utility>

namespace orvane {

namespace {

std::int64_t halfABlockInMicroseconds(std::uint64_t blockSize, double sampleRate) noexcept {
    return static_cast<std::int64_t>(1000000.0 / sampleRate * static_cast<double>(blockSize) * 0.5);
}

} // namespace

EngineManager::EngineManager(std::unique_ptr<IEngineFactory> factory, IReloadNotifier* notifier)
    : engineFactory(std::move(factory)),
      pollPeriod(halfABlockInMicroseconds(blockSize, sampleRate)),
      reloadNotifier(notifier) {
    reloadNotifier->addReloadListener(this);
    try {
        backgroundTask = std::thread([this] { runInBackground(); });
    } catch (...) {
        reloadNotifier->removeReloadListener(this);
        throw;
    }
}

EngineManager::~EngineManager() {
    reloadNotifier->removeReloadListener(this);
    running = false;
    backgroundTask.join();
}

void EngineManager::prepare(std::uint64_t newBlockSize, double newSampleRate) {
    if (newBlockSize < 2)
        throw std::invalid_argument("blocks of one sample are not served; announce blocks of two or more");
    std::shared_ptr<IEngine> former; // dies after the lock is released
    const std::lock_guard lock(mutex);
    blockSize = newBlockSize;
    sampleRate = newSampleRate;
    pollPeriod = halfABlockInMicroseconds(blockSize, sampleRate);
    reloadPending = false; // the engine below is built with the values that the request was about
    former = engine.exchange(engineFactory->createEngine(blockSize, sampleRate));
    prepared = true;
}

void EngineManager::release() {
    std::shared_ptr<IEngine> former;
    const std::lock_guard lock(mutex);
    prepared = false;
    former = engine.exchange(nullptr);
}

void EngineManager::process(const SampleBuffer& input, SampleBuffer& output) {
    if (!muted && prepared) {
        const EngineHandover::Reader reader(engine);
        if (IEngine* const live = reader.engine(); live != nullptr) {
            live->process(input, output);
            return;
        }
    }
    output.clear();
}

void EngineManager::setMuted(bool nowMuted) noexcept { muted = nowMuted; }

void EngineManager::reloadRequested() { reloadPending = true; }

void EngineManager::runInBackground() {
    try {
        while (running) {
            if (reloadPending)
                rebuild();
            if (running)
                std::this_thread::sleep_until(std::chrono::steady_clock::now() +
                                              std::chrono::microseconds(pollPeriod));
        }
    } catch (...) {
        // Deliberate: the task ends without a word and no further rebuild takes place; what plays goes on
        // playing.
    }
}

/// A request that is not served stays, and is looked at again at the next poll.
bool EngineManager::isAnotherFadeTooMany() {
    constexpr std::size_t mostFadesAtOnce = 4;
    std::erase_if(fadingOut, [](const std::weak_ptr<IEngine>& old) { return old.expired(); });
    return fadingOut.size() >= mostFadesAtOnce;
}

void EngineManager::rebuild() {
    const std::lock_guard lock(mutex);
    if (prepared && isAnotherFadeTooMany())
        return;
    std::shared_ptr<IEngine>
        former; // dies under the lock: whoever waits for it finds nothing left of this rebuild
    // Asked again under the lock: a preparation that came first has taken the request with it.
    if (!reloadPending.exchange(false) || !prepared)
        return;
    const std::shared_ptr<IEngine> live = engine.current();
    auto* const pendingFade = dynamic_cast<IPendingFade*>(live.get());
    std::shared_ptr<IEngine> fadeFrom = pendingFade != nullptr ? pendingFade->holdFade() : nullptr;
    const bool held = fadeFrom != nullptr;
    if (!held)
        fadeFrom = live;
    const std::weak_ptr<IEngine> old = fadeFrom;
    try {
        former = engine.exchange(
            engineFactory->createCrossfadedEngine(std::move(fadeFrom), blockSize, sampleRate));
    } catch (...) {
        if (held)
            pendingFade->resumeFade();
        throw;
    }
    if (!held)
        fadingOut.push_back(old);
}

} // namespace orvane
