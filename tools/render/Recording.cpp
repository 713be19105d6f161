// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/Recording.h"

#include "render/AudioStreams.h"
#include "render/RenderError.h"

#include <string>

namespace orvane::kestrum::render {

Recording readRecording(const std::filesystem::path& path, std::string_view remedy) {
    if (!std::filesystem::exists(path))
        throw RenderError("The recording \"" + path.string() + "\" is missing: " + std::string(remedy) + ".");
    SoundFileSource file(path);
    if (file.channelCount() != 1)
        throw RenderError("The recording \"" + path.string() + "\" is not mono: " + std::string(remedy) +
                          ".");
    Recording recording{file.sampleRate(), std::vector<float>(file.frameCount())};
    float* const channel = recording.samples.data();
    file.read({&channel, 1}, file.frameCount());
    return recording;
}

void writeInTurn(SoundFileSink& sink, std::span<const std::vector<float>> voices) {
    const std::size_t channelCount = voices.size();
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        std::vector<float> frames(channelCount * voices[channel].size());
        for (std::size_t frame = 0; frame < voices[channel].size(); ++frame)
            frames[frame * channelCount + channel] = voices[channel][frame];
        sink.write(frames);
    }
}

} // namespace orvane::kestrum::render
