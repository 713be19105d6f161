// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "check/CheckError.h"
#include "render/AudioStreams.h"
#include "render/RenderError.h"
#include "support/ScratchFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace test {

/// A folder of its own for every test, gone behind it.
class FolderTest : public ::testing::Test {
private:
    ScratchFolder scratch;

protected:
    std::filesystem::path folder = scratch.path;
};

/// Interleaved frames as a WAV file of 32-bit float.
inline void writeSound(const std::filesystem::path& path, const std::vector<float>& interleaved,
                       unsigned channels, unsigned rate = 48000) {
    orvane::kestrum::render::SoundFileSink file(path, rate, channels);
    file.write(interleaved);
    file.close();
}

/// The channels of a sound file.
inline std::vector<std::vector<float>> readSound(const std::filesystem::path& path) {
    orvane::kestrum::render::SoundFileSource file(path);
    std::vector<std::vector<float>> channels(file.channelCount(), std::vector<float>(file.frameCount()));
    std::vector<float*> pointers;
    pointers.reserve(channels.size());
    for (auto& channel : channels)
        pointers.push_back(channel.data());
    file.read(pointers, file.frameCount());
    return channels;
}

inline void writeText(const std::filesystem::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

inline std::string readText(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// What a refusal says; "accepted" when there is none.
template <typename Work>
std::string refusalOf(const Work& work) {
    try {
        work();
    } catch (const orvane::kestrum::check::CheckError& error) {
        return error.what();
    } catch (const orvane::kestrum::render::RenderError& error) {
        return error.what();
    }
    return "accepted";
}

} // namespace test
