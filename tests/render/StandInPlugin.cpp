// SPDX-License-Identifier: GPL-3.0-or-later
#include "StandInPlugin.h"

#include <cmath>
#include <string>

namespace orvane::kestrum::render::test {

bool StandInPlugin::setChannelCounts(unsigned inputs, unsigned outputs) {
    inputCount = inputs;
    return outputs == 2;
}

double StandInPlugin::normalizedValue(std::uint32_t id) const { return id == gainId ? gain / 2 : 0; }

std::string StandInPlugin::textOf(std::uint32_t id, double normalized) const {
    if (id == layoutId)
        return std::vector<std::string>{"One", "Two", "Six"}[static_cast<std::size_t>(normalized * 2)];
    if (id == sceneId)
        return normalized < 1 ? "Dry" : "Wet";
    return std::to_string(2 * normalized);
}

void StandInPlugin::setParameter(std::uint32_t id, double normalized) {
    if (id == gainId)
        gain = 2 * normalized;
}

void StandInPlugin::flushParameters() { flushedBefore.push_back(blockLengths.size()); }

void StandInPlugin::prepare(double, std::uint32_t largestBlock, host::ProcessMode) {
    block = largestBlock;
    waiting.clear();
    done.assign(block, 0.0f);
    history.clear();
}

void StandInPlugin::process(std::span<const float* const> inputs, std::span<float* const> outputs,
                            std::uint32_t frames) {
    blockLengths.push_back(frames);
    for (std::size_t frame = 0; frame < frames; ++frame)
        waiting.push_back(inputs[0][frame]);
    while (waiting.size() >= block) {
        for (std::size_t frame = 0; frame < block; ++frame) {
            history.push_back(static_cast<float>(gain) * waiting.front());
            waiting.pop_front();
            const std::size_t now = history.size() - 1;
            const float echo = echoDelay > 0 && now >= echoDelay ? echoGain * history[now - echoDelay] : 0.0f;
            done.push_back(history[now] + echo);
        }
    }
    for (std::size_t frame = 0; frame < frames; ++frame) {
        outputs[0][frame] = outputs[1][frame] = done.front();
        done.pop_front();
    }
}

ChoiceTable standInLayouts() {
    return {"layout", {{"One", "Solo", 1}, {"Two", "Two", 2}, {"Six", "Six", 6}}};
}

ChoiceTable standInScenes() { return {"Scene", {{"Dry", "Dry A", 0}, {"Wet", "Wet", 0}}}; }

void MemorySource::read(std::span<float* const> target, std::uint64_t frames) {
    for (std::uint64_t frame = 0; frame < frames; ++frame, ++position)
        for (std::size_t channel = 0; channel < target.size(); ++channel)
            target[channel][frame] = position < channels[channel].size() ? channels[channel][position] : 0.0f;
}

std::vector<float> MemorySink::left() const {
    std::vector<float> channel;
    for (std::size_t index = 0; index < samples.size(); index += 2)
        channel.push_back(samples[index]);
    return channel;
}

} // namespace orvane::kestrum::render::test
