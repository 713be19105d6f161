// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/IPlugin.h"
#include "render/AudioStreams.h"
#include "render/ChoiceTable.h"

#include <deque>
#include <vector>

namespace orvane::kestrum::render::test {

/// A plug-in that can be looked into: both outputs carry input channel 0, one prepared block late, times a
/// gain that is read once per internal block, as the real one does it. Its layouts are "One", "Two" and
/// "Six"; its Scenes "Dry" and "Wet"; its gain goes from 0 to 2.
class StandInPlugin final : public host::IPlugin {
public:
    enum Id : std::uint32_t { layoutId = 100, sceneId = 7, gainId = 3000000000 };

    bool setChannelCounts(unsigned inputs, unsigned outputs) override;
    unsigned inputChannelCount() const override { return inputCount; }
    unsigned outputChannelCount() const override { return 2; }
    const std::vector<host::ParameterInfo>& parameters() const override { return infos; }
    double normalizedValue(std::uint32_t id) const override;
    std::string textOf(std::uint32_t id, double normalized) const override;
    void setParameter(std::uint32_t id, double normalized) override;
    void flushParameters() override;
    void prepare(double sampleRate, std::uint32_t largestBlock, host::ProcessMode mode) override;
    void release() override {}
    std::uint32_t latency() const override { return 0; }
    void process(std::span<const float* const> inputs, std::span<float* const> outputs,
                 std::uint32_t frames) override;
    host::PluginState state() const override { return {}; }
    void setState(const host::PluginState&) override {}

    std::vector<std::uint32_t> blockLengths; ///< Of every process call so far.
    std::vector<std::size_t> flushedBefore;  ///< Count of process calls at each flush.
    float echoGain = 0;                      ///< Level of one echo, `echoDelay` frames behind.
    std::size_t echoDelay = 0;

private:
    std::vector<host::ParameterInfo> infos{{layoutId, "Speaker Layouts", 2, 0, false, false, false},
                                           {sceneId, "Scenes", 1, 0, false, false, false},
                                           {gainId, "Master Gain", 0, 0.5, false, false, false}};
    unsigned inputCount = 2;
    std::size_t block = 0;
    double gain = 0.5;
    std::deque<float> waiting;
    std::deque<float> done;
    std::vector<float> history;
};

/// The stand-in's tables.
ChoiceTable standInLayouts();
ChoiceTable standInScenes();

/// A source that holds its frames in memory.
class MemorySource final : public IAudioSource {
public:
    explicit MemorySource(std::vector<std::vector<float>> channels) : channels(std::move(channels)) {}
    unsigned channelCount() const override { return static_cast<unsigned>(channels.size()); }
    std::uint64_t frameCount() const override { return channels[0].size(); }
    void read(std::span<float* const> target, std::uint64_t frames) override;

private:
    std::vector<std::vector<float>> channels;
    std::size_t position = 0;
};

/// A sink that keeps the frames, interleaved.
class MemorySink final : public IAudioSink {
public:
    void write(std::span<const float> interleaved) override {
        samples.insert(samples.end(), interleaved.begin(), interleaved.end());
    }
    std::vector<float> left() const;

    std::vector<float> samples;
};

} // namespace orvane::kestrum::render::test
