// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/Renderer.h"

#include "render/StreamTrimmer.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <random>
#include <thread>

namespace orvane::kestrum::render {

namespace {

using Clock = std::chrono::steady_clock;

constexpr double quietSeconds = 0.25; // longer than any gap between direct sound and a room's tail
constexpr double longestTailSeconds = 20;

/// Hands the stream on untouched.
class RawCollector {
public:
    RawCollector(std::uint64_t length, IAudioSink& sink) : length(length), sink(sink) {}
    void push(std::span<const float> stream) {
        sink.write(stream);
        received += stream.size() / 2;
    }
    bool finished() const { return received >= length; }
    void close() {}
    std::uint64_t written() const { return received; }

private:
    std::uint64_t length;
    IAudioSink& sink;
    std::uint64_t received = 0;
};

/// One run: buffers, position, time keeping.
class Run {
public:
    Run(host::IPlugin& plugin, IAudioSource& source, const RenderPlan& plan)
        : plugin(plugin),
          source(source),
          plan(plan),
          random(plan.varyingBlocks.value_or(0)),
          input(source.channelCount(), std::vector<float>(plan.block)),
          output(plugin.outputChannelCount(), std::vector<float>(plan.block)),
          interleaved(2 * plan.block) {
        for (auto& channel : input)
            inputPointers.push_back(channel.data());
        for (auto& channel : output)
            outputPointers.push_back(channel.data());
    }

    template <typename Collector>
    RenderFacts feed(Collector& collector, std::uint64_t length, const Progress& progress) {
        started = Clock::now();
        while (!collector.finished()) {
            std::uint64_t left = nextHostBlock(length);
            while (left > 0) {
                applyChanges();
                const auto frames = static_cast<std::uint32_t>(std::min(left, framesToNextChange()));
                processBlock(frames);
                collector.push({interleaved.data(), 2 * std::size_t{frames}});
                left -= frames;
            }
            if (progress)
                progress(std::min(1.0, static_cast<double>(position) /
                                           static_cast<double>(std::max<std::uint64_t>(length, 1))));
        }
        collector.close();
        facts.writtenFrames = collector.written();
        facts.fedFrames = position;
        const double seconds = static_cast<double>(position) / plan.sampleRate;
        facts.meanLoad = seconds > 0 ? insideSeconds / seconds : 0;
        facts.worstLoad = worstSeconds * plan.sampleRate / plan.block;
        return facts;
    }

private:
    std::uint64_t nextHostBlock(std::uint64_t length) {
        if (!plan.varyingBlocks)
            return plan.block;
        // The engine's own numbers, not a distribution's: those differ between standard libraries. The last
        // block ends with the stream, so that varying and equal blocks give streams of one length.
        const std::uint64_t drawn = 1 + random() % plan.block;
        return position < length ? std::min(drawn, length - position) : drawn;
    }

    void applyChanges() {
        bool rebuilds = false;
        for (; next < plan.automation.size() && plan.automation[next].frame <= position; ++next) {
            plugin.setParameter(plan.automation[next].value.id, plan.automation[next].value.normalized);
            rebuilds = rebuilds || plan.automation[next].value.rebuilds;
        }
        if (!rebuilds)
            return;
        plugin.flushParameters();
        std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(plan.settleMilliseconds));
        paused += plan.settleMilliseconds / 1000;
    }

    std::uint64_t framesToNextChange() const {
        return next < plan.automation.size() ? plan.automation[next].frame - position : ~std::uint64_t{0};
    }

    void processBlock(std::uint32_t frames) {
        source.read(inputPointers, frames);
        if (plan.realtime)
            std::this_thread::sleep_until(
                started + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(
                              paused + static_cast<double>(position) / plan.sampleRate)));
        const auto before = Clock::now();
        plugin.process(constInputs(), outputPointers, frames);
        const double seconds = std::chrono::duration<double>(Clock::now() - before).count();
        insideSeconds += seconds;
        worstSeconds = std::max(worstSeconds, seconds);
        ++facts.blockCount;
        position += frames;
        for (std::size_t frame = 0; frame < frames; ++frame) {
            interleaved[2 * frame] = output[0][frame];
            interleaved[2 * frame + 1] = output[1][frame];
        }
    }

    std::span<const float* const> constInputs() const { return {inputPointers.data(), inputPointers.size()}; }

    host::IPlugin& plugin;
    IAudioSource& source;
    const RenderPlan& plan;
    std::mt19937 random;
    std::vector<std::vector<float>> input;
    std::vector<std::vector<float>> output;
    std::vector<float> interleaved;
    std::vector<float*> inputPointers;
    std::vector<float*> outputPointers;
    std::uint64_t position = 0;
    std::size_t next = 0; ///< Index of the next change.
    Clock::time_point started;
    double paused = 0; ///< Seconds of settling, which the pacing by the clock leaves out.
    double insideSeconds = 0;
    double worstSeconds = 0;
    RenderFacts facts;
};

} // namespace

RenderFacts renderStream(host::IPlugin& plugin, IAudioSource& source, IAudioSink& sink,
                         const RenderPlan& plan, const Progress& progress) {
    Run run(plugin, source, plan);
    const std::uint64_t length = source.frameCount();
    if (plan.raw) {
        const std::uint64_t whole = (length + plan.block - 1) / plan.block * plan.block;
        RawCollector collector(whole, sink);
        return run.feed(collector, whole, progress);
    }
    const std::uint64_t delay = plan.block;
    const auto frames = [&plan](double seconds) {
        return static_cast<std::uint64_t>(seconds * plan.sampleRate);
    };
    StreamTrimmer collector({delay, length, std::max<std::uint64_t>(frames(quietSeconds), 2 * plan.block),
                             frames(longestTailSeconds)},
                            sink);
    RenderFacts facts = run.feed(collector, length + delay, progress);
    facts.delayRemoved = delay;
    return facts;
}

} // namespace orvane::kestrum::render
