// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "TestProcessor.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <random>
#include <thread>

namespace test {

/// Does something again and again on a thread of its own until it is stopped.
class Repeating {
public:
    explicit Repeating(std::function<void()> step);
    ~Repeating() { stop(); }
    Repeating(const Repeating&) = delete;
    Repeating& operator=(const Repeating&) = delete;

    void stop();

private:
    std::atomic<bool> running{true};
    std::thread thread;
};

/// A host's audio thread: plays noise in real time at 48 kHz in blocks of 1 to 64 frames, 16 channels wide, and writes
/// parameters before some of them: continuous ones often, layouts and Scenes, which rebuild the engine, now and then.
class AudioThread {
public:
    static constexpr int longestBlock = 64;
    enum class Writes { none, parameters };

    AudioThread(Processor& processor, Writes writes, std::function<void()> afterBlock = {});

    /// What was played so far; the thread goes on.
    std::uint64_t blocks() const { return played; }
    std::uint64_t notFiniteBlocks() const { return notFinite; }

    void stop() { thread.stop(); }

private:
    void play();
    void writeAParameter();

    Processor& processor;
    Writes writes;
    std::function<void()> afterBlock;
    juce::AudioBuffer<float> buffer{16, longestBlock};
    std::minstd_rand random;
    std::atomic<std::uint64_t> played{0};
    std::atomic<std::uint64_t> notFinite{0};
    std::chrono::steady_clock::time_point next = std::chrono::steady_clock::now();
    Repeating thread; ///< Last: begins when everything else is there.
};

/// A host's setup thread: prepares with and without a release, at three rates, and changes the input bus.
class SetupThread {
public:
    explicit SetupThread(Processor& processor);

    std::uint64_t preparations() const { return prepared; }
    std::uint64_t busChanges() const { return changed; }
    void stop() { thread.stop(); }

private:
    void act();

    Processor& processor;
    std::minstd_rand random;
    std::atomic<std::uint64_t> prepared{0};
    std::atomic<std::uint64_t> changed{0};
    Repeating thread;
};

/// A host that saves and restores the state, whole, damaged and in turn, from a thread of its own.
class StateThread {
public:
    explicit StateThread(Processor& processor);

    std::uint64_t restored() const { return count; }
    void stop() { thread.stop(); }

private:
    void act();

    Processor& processor;
    juce::MemoryBlock saved;
    std::minstd_rand random;
    std::atomic<std::uint64_t> count{0};
    Repeating thread;
};

} // namespace test
