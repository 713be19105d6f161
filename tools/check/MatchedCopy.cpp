// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/MatchedCopy.h"

#include "check/CheckError.h"
#include "check/SoundWindows.h"
#include "render/AudioStreams.h"

#include <sndfile.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <span>

namespace orvane::kestrum::check {

namespace {

struct Closer {
    void operator()(SNDFILE* handle) const { sf_close(handle); }
};

/// A FLAC file of 24 bits.
class FlacFile {
public:
    FlacFile(const std::filesystem::path& path, unsigned sampleRate) : path(path.string()) {
        SF_INFO info{};
        info.samplerate = static_cast<int>(sampleRate);
        info.channels = 2;
        info.format = SF_FORMAT_FLAC | SF_FORMAT_PCM_24;
        handle.reset(sf_open(path.c_str(), SFM_WRITE, &info));
        if (!handle)
            refuse();
        sf_command(handle.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
    }

    void write(std::span<const float> interleaved) {
        const auto frames = static_cast<sf_count_t>(interleaved.size() / 2);
        if (sf_writef_float(handle.get(), interleaved.data(), frames) != frames)
            refuse();
    }

    void close() {
        if (sf_close(handle.release()) != 0)
            refuse();
    }

private:
    [[noreturn]] void refuse() const {
        throw CheckError("The copy \"" + path + "\" cannot be written: is the disk full?");
    }

    std::string path;
    std::unique_ptr<SNDFILE, Closer> handle;
};

} // namespace

std::vector<std::string> writeMatchedCopy(const std::filesystem::path& rendered, double gainDb,
                                          const std::filesystem::path& copy) {
    constexpr std::uint64_t blockLength = 16384;
    render::SoundFileSource source(rendered);
    FlacFile file(copy, source.sampleRate());
    SoundWindows sound(source.sampleRate());
    const auto gain = static_cast<float>(std::pow(10.0, gainDb / 20));
    std::array<std::vector<float>, 2> ears{std::vector<float>(blockLength), std::vector<float>(blockLength)};
    const std::array<float*, 2> pointers{ears[0].data(), ears[1].data()};
    std::vector<float> interleaved;
    for (std::uint64_t first = 0; first < source.frameCount(); first += blockLength) {
        const std::uint64_t frames = std::min(blockLength, source.frameCount() - first);
        source.read(pointers, frames);
        interleaved.resize(2 * frames);
        for (std::size_t frame = 0; frame < frames; ++frame)
            for (std::size_t ear = 0; ear < 2; ++ear)
                interleaved[2 * frame + ear] = gain * ears[ear][frame];
        file.write(interleaved);
        sound.add(interleaved);
    }
    file.close();
    return sound.finish();
}

} // namespace orvane::kestrum::check
