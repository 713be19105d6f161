// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/Downmix.h"

#include "check/CheckError.h"
#include "parameters/core/LayoutTable.h"
#include "render/AudioStreams.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace orvane::kestrum::check {

namespace {

constexpr float minus3dB = 0.70710678f, minus6dB = 0.5f;
constexpr float widestFront = 60; // degrees

DownmixGains toSide(float azimuth, float gain) {
    return azimuth < 0 ? DownmixGains{gain, 0} : DownmixGains{0, gain};
}

DownmixGains gainsOf(const core::SpeakerRow& speaker) {
    if (speaker.lowFrequency)
        return {};
    const float fromAhead = std::abs(speaker.azimuth);
    const bool inTheMiddle = fromAhead == 0 || fromAhead == 180;
    if (speaker.elevation > 0 || fromAhead == 180)
        return inTheMiddle ? DownmixGains{minus6dB, minus6dB} : toSide(speaker.azimuth, minus3dB);
    if (inTheMiddle)
        return {minus3dB, minus3dB};
    return toSide(speaker.azimuth, fromAhead <= widestFront ? 1.0f : minus3dB);
}

} // namespace

std::vector<DownmixGains> downmixGains(std::string_view layout) {
    const auto table = core::layoutTable();
    const auto row = std::ranges::find(table, layout, &core::LayoutRow::name);
    if (row == table.end())
        throw CheckError("There is no layout \"" + std::string(layout) + "\" to mix down.");
    if (row->speakers.size() == 2)
        return {{1, 0}, {0, 1}};
    std::vector<DownmixGains> gains;
    std::ranges::transform(row->speakers, std::back_inserter(gains), gainsOf);
    return gains;
}

void writeDownmix(const std::filesystem::path& mix, std::string_view layout,
                  const std::filesystem::path& output) {
    constexpr std::uint64_t blockLength = 16384;
    const std::vector<DownmixGains> gains = downmixGains(layout);
    render::SoundFileSource source(mix);
    render::SoundFileSink sink(output, source.sampleRate());
    std::vector<std::vector<float>> channels(source.channelCount(), std::vector<float>(blockLength));
    std::vector<float*> pointers(channels.size());
    std::ranges::transform(channels, pointers.begin(), [](auto& channel) { return channel.data(); });
    for (std::uint64_t first = 0; first < source.frameCount(); first += blockLength) {
        const std::uint64_t frames = std::min(blockLength, source.frameCount() - first);
        source.read(pointers, frames);
        std::vector<float> stereo(2 * frames);
        for (std::size_t channel = 0; channel < gains.size(); ++channel)
            for (std::size_t frame = 0; frame < frames; ++frame) {
                stereo[2 * frame] += gains[channel].left * channels[channel][frame];
                stereo[2 * frame + 1] += gains[channel].right * channels[channel][frame];
            }
        sink.write(stereo);
    }
    sink.close();
}

} // namespace orvane::kestrum::check
