// SPDX-License-Identifier: GPL-3.0-or-later
#include "HostThreads.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

namespace test {

namespace {

using namespace std::chrono_literals;

/// Setup and state threads act often, but leave time for what they have set off.
constexpr auto pause = 10ms;

int upTo(std::minstd_rand& random, int count) {
    return static_cast<int>(random() % static_cast<std::uint32_t>(count));
}

template <std::size_t count>
int oneOf(std::minstd_rand& random, const std::array<int, count>& choices) {
    return choices[random() % count];
}

} // namespace

Repeating::Repeating(std::function<void()> step)
    : thread([this, step = std::move(step)] {
          while (running)
              step();
      }) {}

void Repeating::stop() {
    running = false;
    if (thread.joinable())
        thread.join();
}

AudioThread::AudioThread(Processor& processor, Writes writes, std::function<void()> givenAfterBlock)
    : processor(processor), writes(writes), afterBlock(std::move(givenAfterBlock)), random(1), thread([this] {
          play();
      }) {}

void AudioThread::play() {
    if (writes == Writes::parameters && played % 4 == 0)
        writeAParameter();
    const int frames = 1 + upTo(random, longestBlock);
    juce::AudioBuffer<float> block(buffer.getArrayOfWritePointers(), buffer.getNumChannels(), frames);
    for (int channel = 0; channel < block.getNumChannels(); ++channel)
        for (int frame = 0; frame < frames; ++frame)
            block.setSample(channel, frame, static_cast<float>(upTo(random, 2001)) / 1000.0f - 1.0f);
    test::process(processor, block);
    if (!isFinite(block))
        ++notFinite;
    ++played;
    if (afterBlock)
        afterBlock();
    next = std::max(next + frames * 1000000us / 48000, std::chrono::steady_clock::now() - 10ms);
    std::this_thread::sleep_until(next);
}

void AudioThread::writeAParameter() {
    const int parameter = upTo(random, 64) == 0 ? upTo(random, 2) : 2 + upTo(random, 4);
    const float value = static_cast<float>(upTo(random, 1000)) / 999.0f;
    processor.getParameters()[parameter]->setValueNotifyingHost(value);
}

SetupThread::SetupThread(Processor& processor) : processor(processor), random(2), thread([this] { act(); }) {}

void SetupThread::act() {
    switch (upTo(random, 6)) {
    case 0:
        processor.releaseResources();
        std::this_thread::sleep_for(pause); // blocks arrive that nobody is prepared for
        [[fallthrough]];
    case 1:
        processor.prepareToPlay(oneOf<4>(random, {24000, 44100, 48000, 48000}),
                                oneOf<4>(random, {AudioThread::longestBlock, 100, 128, 512}));
        ++prepared;
        break;
    default:
        if (setInputs(processor, oneOf<6>(random, {1, 2, 6, 8, 12, 16})))
            ++changed;
    }
    std::this_thread::sleep_for(pause);
}

StateThread::StateThread(Processor& processor) : processor(processor), random(3), thread([this] { act(); }) {}

void StateThread::act() {
    if (saved.isEmpty() || upTo(random, 4) == 0) {
        saved.reset();
        processor.getStateInformation(saved);
    }
    juce::MemoryBlock given(saved);
    if (upTo(random, 4) == 0)
        given[static_cast<int>(upTo(random, static_cast<int>(given.getSize())))] ^=
            static_cast<char>(1 << upTo(random, 8));
    processor.setStateInformation(given.getData(), static_cast<int>(given.getSize()));
    ++count;
    std::this_thread::sleep_for(pause);
}

} // namespace test
