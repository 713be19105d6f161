// SPDX-License-Identifier: GPL-3.0-or-later
#include "identify/ChannelFile.h"

#include "render/AudioStreams.h"
#include "render/Names.h"

#include <algorithm>

namespace orvane::kestrum::identify {

namespace {

constexpr std::size_t shortestTurnSeconds = 2;
constexpr double pauseSeconds = 0.3; ///< At least so long before the next channel, for the room to fade.

std::size_t turnSecondsFor(const std::vector<std::vector<float>>& voices, unsigned sampleRate) {
    std::size_t longest = 0;
    for (const auto& voice : voices)
        longest = std::max(longest, voice.size() + static_cast<std::size_t>(pauseSeconds * sampleRate));
    return std::max(shortestTurnSeconds, (longest + sampleRate - 1) / sampleRate);
}

} // namespace

const core::LayoutRow& layoutNamed(std::string_view name) {
    const render::Choice& choice = render::layoutChoices().find(name);
    return *std::ranges::find(core::layoutTable(), choice.name, &core::LayoutRow::name);
}

Turns writeChannelFile(const std::filesystem::path& path, const core::LayoutRow& layout, const Voices& voices,
                       unsigned sampleRate) {
    Turns turns;
    turns.channels = channels::channelsOf(layout);
    std::vector<std::vector<float>> sounds;
    for (const channels::Channel& channel : turns.channels)
        sounds.push_back(voices.soundOf(channel));
    turns.turnFrames = turnSecondsFor(sounds, sampleRate) * sampleRate;
    for (auto& sound : sounds)
        sound.resize(turns.turnFrames);
    render::SoundFileSink sink(path, sampleRate, static_cast<unsigned>(sounds.size()));
    render::writeInTurn(sink, sounds);
    sink.close();
    return turns;
}

} // namespace orvane::kestrum::identify
