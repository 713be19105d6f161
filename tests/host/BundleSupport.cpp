// SPDX-License-Identifier: GPL-3.0-or-later
#include "BundleSupport.h"

#include "render/Controls.h"
#include "render/Names.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace orvane::kestrum::host::test {

std::filesystem::path bundlePath() { return KESTRUM_BUNDLE; }

std::shared_ptr<Module> loadBundle() { return std::make_shared<Module>(bundlePath()); }

void set(PluginInstance& plugin, std::string_view parameter, std::string_view value) {
    const render::Controls controls(plugin, render::layoutChoices(), render::sceneChoices());
    const auto resolved = controls.resolve(parameter, value);
    plugin.setParameter(resolved.id, resolved.normalized);
}

std::unique_ptr<PluginInstance> makeInstance(unsigned inputs, std::string_view layout,
                                             std::string_view scene) {
    auto plugin = std::make_unique<PluginInstance>(loadBundle());
    plugin->setChannelCounts(inputs, 2);
    set(*plugin, "layout", layout);
    set(*plugin, "scene", scene);
    return plugin;
}

Channels play(PluginInstance& plugin, const Channels& input, std::uint32_t block) {
    const std::size_t length = input.empty() ? 0 : input[0].size();
    Channels output(plugin.outputChannelCount(),
                    std::vector<float>(length, 9.0f)); // 9: what is not written shows
    std::vector<const float*> from(input.size());
    std::vector<float*> to(output.size());
    for (std::size_t first = 0; first < length; first += block) {
        for (std::size_t channel = 0; channel < input.size(); ++channel)
            from[channel] = input[channel].data() + first;
        for (std::size_t channel = 0; channel < output.size(); ++channel)
            to[channel] = output[channel].data() + first;
        plugin.process(from, to, static_cast<std::uint32_t>(std::min<std::size_t>(block, length - first)));
    }
    return output;
}

Channels noise(std::size_t channelCount, std::size_t length, std::uint32_t seed) {
    std::mt19937 random(seed);
    Channels channels(channelCount, std::vector<float>(length));
    for (auto& channel : channels)
        for (float& sample : channel)
            sample = (static_cast<float>(random() >> 8) / 16777216.0f - 0.5f) * 0.5f;
    return channels;
}

Channels silence(std::size_t channelCount, std::size_t length) {
    return {channelCount, std::vector<float>(length)};
}

float peakOf(const Channels& channels) {
    float peak = 0;
    for (const auto& channel : channels)
        for (const float sample : channel)
            peak = std::isfinite(sample) ? std::max(peak, std::abs(sample)) : INFINITY;
    return peak;
}

double energyOf(const std::vector<float>& channel) {
    double energy = 0;
    for (const float sample : channel)
        energy += static_cast<double>(sample) * sample;
    return energy;
}

} // namespace orvane::kestrum::host::test
