// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sndfile.h>

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace test {

using Signal = std::vector<double>;
using Channels = std::vector<Signal>;

struct Sound {
    int sampleRate = 0;
    Channels channels;
};

inline Sound readSound(const std::filesystem::path& path) {
    SF_INFO info{};
    SNDFILE* const file = sf_open(path.c_str(), SFM_READ, &info);
    if (file == nullptr)
        throw std::runtime_error("cannot read " + path.string());
    std::vector<double> interleaved(static_cast<std::size_t>(info.frames * info.channels));
    sf_readf_double(file, interleaved.data(), info.frames);
    sf_close(file);
    const auto count = static_cast<std::size_t>(info.channels);
    Sound sound{info.samplerate, Channels(count, Signal(static_cast<std::size_t>(info.frames)))};
    for (std::size_t index = 0; index < interleaved.size(); ++index)
        sound.channels[index % count][index / count] = interleaved[index];
    return sound;
}

inline void writeSound(const std::filesystem::path& path, const Sound& sound) {
    SF_INFO info{};
    info.samplerate = sound.sampleRate;
    info.channels = static_cast<int>(sound.channels.size());
    info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    SNDFILE* const file = sf_open(path.c_str(), SFM_WRITE, &info);
    if (file == nullptr)
        throw std::runtime_error("cannot write " + path.string());
    const std::size_t frames = sound.channels.front().size();
    std::vector<double> interleaved;
    for (std::size_t frame = 0; frame < frames; ++frame)
        for (const Signal& channel : sound.channels)
            interleaved.push_back(channel[frame]);
    sf_writef_double(file, interleaved.data(), static_cast<sf_count_t>(frames));
    sf_close(file);
}

/// Runs the built program; its messages go to the test's log.
inline int kestrum(const std::string& arguments) {
    const std::string command = "\"" KESTRUM_PROGRAM "\" " + arguments + " --plugin \"" KESTRUM_BUNDLE "\"";
    return std::system(command.c_str());
}

inline std::filesystem::path scratch(const std::string& name) {
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "kestrum_end_to_end";
    std::filesystem::create_directories(folder);
    return folder / name;
}

} // namespace test
