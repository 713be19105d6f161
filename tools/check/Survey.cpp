// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/Survey.h"

#include "check/CheckError.h"
#include "render/AudioStreams.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace orvane::kestrum::check {

namespace {

constexpr std::uint64_t blockLength = 16384;
constexpr unsigned widestBus = 16;

/// "3:07.25"
std::string clockTime(double seconds) {
    const double minutes = std::floor(seconds / 60);
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.0f:%05.2f", minutes, seconds - 60 * minutes);
    return text.data();
}

[[noreturn]] void refuse(const Mix& mix, const std::string& rest) {
    throw CheckError("The mix \"" + mix.path.string() + "\" " + rest);
}

} // namespace

Mix openMix(const std::filesystem::path& path) {
    const render::SoundFileSource source(path);
    Mix mix{std::filesystem::absolute(path).lexically_normal(), source.channelCount(), source.sampleRate(),
            source.frameCount()};
    if (mix.channelCount > widestBus)
        refuse(mix, "has " + std::to_string(mix.channelCount) +
                        " channels and the plug-in takes 16 at most: leave some out.");
    if (mix.seconds() > longestMixSeconds)
        refuse(mix, "lasts " + clockTime(mix.seconds()) +
                        " and a page holds ten minutes: cut out the passage that you want to judge.");
    return mix;
}

void requireSound(const Mix& mix) {
    render::SoundFileSource source(mix.path);
    std::vector<std::vector<float>> channels(mix.channelCount, std::vector<float>(blockLength));
    std::vector<float*> pointers(mix.channelCount);
    std::ranges::transform(channels, pointers.begin(), [](auto& channel) { return channel.data(); });
    float peak = 0;
    for (std::uint64_t first = 0; first < mix.frameCount; first += blockLength) {
        source.read(pointers, blockLength);
        for (std::size_t channel = 0; channel < channels.size(); ++channel)
            for (std::uint64_t frame = 0; frame < blockLength; ++frame) {
                const float sample = channels[channel][frame];
                if (!std::isfinite(sample))
                    refuse(mix, "holds a value that is no number in channel " + std::to_string(channel + 1) +
                                    " at " + clockTime(static_cast<double>(first + frame) / mix.sampleRate) +
                                    ": export it anew without the effect that made it.");
                peak = std::max(peak, std::abs(sample));
            }
    }
    if (peak == 0)
        refuse(mix, "is silent from end to end: export it anew.");
}

} // namespace orvane::kestrum::check
