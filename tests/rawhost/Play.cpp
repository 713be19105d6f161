// SPDX-License-Identifier: GPL-3.0-or-later
#include "Play.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <random>
#include <string_view>

namespace rawhost {

Channels noise(std::size_t channelCount, std::size_t frames, std::uint32_t seed) {
    Channels channels(channelCount, std::vector<float>(frames));
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        std::mt19937 random(seed * 1000 + static_cast<std::uint32_t>(channel));
        for (float& sample : channels[channel])
            sample = (static_cast<float>(random() >> 8) / 16777216.0f - 0.5f) * 0.5f;
    }
    return channels;
}

Channels silence(std::size_t channelCount, std::size_t frames) {
    return {channelCount, std::vector<float>(frames)};
}

Channels play(const RawPlugin& plugin, const Channels& input, std::span<const int> blocks) {
    const std::size_t frames = input.empty() ? 0 : input[0].size();
    Channels from = input; // a plug-in that writes to its input spoils its own copy only
    Channels output(2, std::vector<float>(frames, 9.0f));
    std::vector<float*> inputs(from.size());
    std::array<float*, 2> outputs{};
    std::size_t turn = 0;
    for (std::size_t first = 0; first < frames;) {
        const auto wanted = static_cast<std::size_t>(blocks[turn++ % blocks.size()]);
        const std::size_t length = std::min(wanted, frames - first);
        for (std::size_t channel = 0; channel < from.size(); ++channel)
            inputs[channel] = from[channel].data() + first;
        for (std::size_t channel = 0; channel < 2; ++channel)
            outputs[channel] = output[channel].data() + first;
        plugin.process(inputs.data(), inputs.size(), outputs.data(), 2, static_cast<int>(length));
        first += length;
    }
    return output;
}

Channels play(const RawPlugin& plugin, const Channels& input, int block) {
    return play(plugin, input, std::span(&block, 1));
}

bool isFinite(const Channels& channels) {
    return std::ranges::all_of(channels, [](const std::vector<float>& channel) {
        return std::ranges::all_of(channel, [](float sample) { return std::isfinite(sample); });
    });
}

float peakOf(const Channels& channels) {
    float peak = 0;
    for (const auto& channel : channels)
        for (const float sample : channel)
            peak = std::max(peak, std::abs(sample));
    return peak;
}

bool Findings::expect(bool holds, const std::string& what) {
    if (!holds)
        lines += what + "\n";
    return holds;
}

int roundsOf(int inCommitTier, int inReleaseTier) {
    const char* const tier = std::getenv("KESTRUM_TIER");
    return tier != nullptr && std::string_view(tier) == "release" ? inReleaseTier : inCommitTier;
}

} // namespace rawhost
