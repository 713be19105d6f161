// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/AudioStreams.h"

#include "render/RenderError.h"

#include <sndfile.h>

#include <algorithm>
#include <string>
#include <vector>

namespace orvane::kestrum::render {

namespace {

struct Closer {
    void operator()(SNDFILE* handle) const { sf_close(handle); }
};
using Handle = std::unique_ptr<SNDFILE, Closer>;

} // namespace

struct SoundFileSource::File {
    std::string path;
    SF_INFO info{};
    Handle handle;
    std::uint64_t position = 0;
    std::vector<float> interleaved;
};

SoundFileSource::SoundFileSource(const std::filesystem::path& path) : file(std::make_unique<File>()) {
    file->path = path.string();
    file->handle.reset(sf_open(path.c_str(), SFM_READ, &file->info));
    if (!file->handle)
        throw RenderError("The input \"" + file->path + "\" cannot be read (" + sf_strerror(nullptr) +
                          "): name a sound file such as WAV, FLAC or AIFF.");
}

SoundFileSource::~SoundFileSource() = default;

unsigned SoundFileSource::channelCount() const { return static_cast<unsigned>(file->info.channels); }
std::uint64_t SoundFileSource::frameCount() const {
    return static_cast<std::uint64_t>(std::max<sf_count_t>(file->info.frames, 0));
}
unsigned SoundFileSource::sampleRate() const { return static_cast<unsigned>(file->info.samplerate); }

void SoundFileSource::read(std::span<float* const> channels, std::uint64_t frames) {
    const std::uint64_t left = std::min(frames, frameCount() - std::min(file->position, frameCount()));
    const std::size_t count = channels.size();
    file->interleaved.resize(static_cast<std::size_t>(left) * count);
    if (left > 0) {
        const auto done =
            sf_readf_float(file->handle.get(), file->interleaved.data(), static_cast<sf_count_t>(left));
        if (static_cast<std::uint64_t>(std::max<sf_count_t>(done, 0)) != left)
            throw RenderError("The input \"" + file->path +
                              "\" ends before its promised length: copy it anew.");
    }
    file->position += left;
    for (std::size_t channel = 0; channel < count; ++channel) {
        for (std::uint64_t frame = 0; frame < left; ++frame)
            channels[channel][frame] = file->interleaved[static_cast<std::size_t>(frame) * count + channel];
        std::fill(channels[channel] + left, channels[channel] + frames, 0.0f);
    }
}

struct SoundFileSink::File {
    std::string path;
    SF_INFO info{};
    Handle handle;
};

SoundFileSink::SoundFileSink(const std::filesystem::path& path, unsigned sampleRate, unsigned channelCount)
    : file(std::make_unique<File>()) {
    file->path = path.string();
    file->info.samplerate = static_cast<int>(sampleRate);
    file->info.channels = static_cast<int>(channelCount);
    file->info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    file->handle.reset(sf_open(path.c_str(), SFM_WRITE, &file->info));
    if (!file->handle)
        throw RenderError("The output \"" + file->path + "\" cannot be written (" + sf_strerror(nullptr) +
                          "): name a file in a folder of yours.");
    // The peak chunk holds the time of writing; without it equal renderings are equal files.
    sf_command(file->handle.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
}

SoundFileSink::~SoundFileSink() = default;

void SoundFileSink::write(std::span<const float> interleaved) {
    const auto frames = static_cast<sf_count_t>(interleaved.size()) / file->info.channels;
    if (sf_writef_float(file->handle.get(), interleaved.data(), frames) != frames)
        throw RenderError("The output \"" + file->path + "\" cannot be written (" +
                          sf_strerror(file->handle.get()) + "): is the disk full?");
}

void SoundFileSink::close() {
    if (file->handle && sf_close(file->handle.release()) != 0)
        throw RenderError("The end of \"" + file->path + "\" cannot be written: is the disk full?");
}

} // namespace orvane::kestrum::render
