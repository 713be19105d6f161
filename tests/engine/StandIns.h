// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IEngine.h"
#include "base/SampleBuffer.h"
#include "engine/IEngineFactory.h"
#include "engine/IParameterFreeze.h"
#include "parameters/zmtl/ISleep.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace test {

/// Counts the engines that are alive, and remembers on which thread one died.
struct EngineCensus {
    std::atomic<int> alive{0};
    std::atomic<int> built{0};
    std::atomic<bool> diedWhereForbidden{false};

    /// The thread on which no engine may die.
    static bool& forbiddenHere() {
        thread_local bool forbidden = false;
        return forbidden;
    }
};

/// Writes one constant value into both channels and zero into the others.
class ConstantEngine : public orvane::IEngine {
public:
    ConstantEngine(float outputValue, EngineCensus& engineCensus, std::uint64_t speakers = 2)
        : value(outputValue), census(engineCensus), speakerTotal(speakers) {
        ++census.alive;
        ++census.built;
    }
    ~ConstantEngine() override {
        if (EngineCensus::forbiddenHere())
            census.diedWhereForbidden = true;
        --census.alive;
    }
    ConstantEngine(const ConstantEngine&) = delete;
    ConstantEngine& operator=(const ConstantEngine&) = delete;

    void process(const orvane::SampleBuffer& /*input*/, orvane::SampleBuffer& output) override {
        ++blocks;
        longestView = std::max(longestView, output.numSamples);
        for (std::uint64_t channel = 0; channel < output.numChannels; ++channel)
            std::fill_n(output.channelPointers[channel], output.numSamples, channel < 2 ? value : 0.0f);
    }
    std::uint64_t speakerCount() const noexcept override { return speakerTotal; }

    std::uint64_t blocks = 0;
    std::uint64_t longestView = 0; ///< Most samples that a block asked for.

private:
    float value;
    EngineCensus& census;
    std::uint64_t speakerTotal;
};

/// Plays a value that somebody else may change, until it is told to stay with what it has.
class FollowingEngine final : public orvane::IEngine, public orvane::IParameterFreeze {
public:
    explicit FollowingEngine(const float& followed) : value(&followed) {}

    void process(const orvane::SampleBuffer& /*input*/, orvane::SampleBuffer& output) override {
        for (std::uint64_t channel = 0; channel < output.numChannels; ++channel)
            std::fill_n(output.channelPointers[channel], output.numSamples, *value);
    }
    std::uint64_t speakerCount() const noexcept override { return 2; }
    void freezeParameters() noexcept override {
        if (value != &kept) {
            kept = *value;
            value = &kept;
        }
    }

private:
    const float* value;
    float kept = 0;
};

/// A sleep that ends only when it is woken, so that a test decides when the sleeper looks again.
class SleepUntilWoken final : public zmtl::ISleep {
public:
    void sleepFor(std::chrono::milliseconds /*time*/) override {
        std::unique_lock lock(mutex);
        condition.wait(lock, [this] { return woken; });
        woken = false;
    }
    void wake() override {
        const std::lock_guard lock(mutex);
        woken = true;
        condition.notify_all();
    }

private:
    std::mutex mutex;
    std::condition_variable condition;
    bool woken = false;
};

/// Whoever waits looks again soon.
class ShortSleep final : public zmtl::ISleep {
public:
    void sleepFor(std::chrono::milliseconds /*time*/) override {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    void wake() override {}
};

} // namespace test
