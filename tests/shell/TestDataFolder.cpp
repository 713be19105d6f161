// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestDataFolder.h"

#include "support/ReverbFiles.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <numbers>
#include <stdexcept>
#include <vector>

namespace test {

namespace {

void append(std::string& bytes, std::uint32_t number, int size) {
    for (int index = 0; index < size; ++index)
        bytes += static_cast<char>(number >> (8 * index) & 0xFF);
}

/// A wave file of 32-bit float stereo frames.
std::string waveFile(std::uint32_t sampleRate, const std::vector<float>& samples) {
    const auto dataBytes = static_cast<std::uint32_t>(samples.size() * sizeof(float));
    std::string bytes = "RIFF";
    append(bytes, 36 + dataBytes, 4);
    bytes += "WAVEfmt ";
    append(bytes, 16, 4);
    append(bytes, 3, 2); // floating point
    append(bytes, 2, 2);
    append(bytes, sampleRate, 4);
    append(bytes, sampleRate * 8, 4);
    append(bytes, 8, 2);
    append(bytes, 32, 2);
    bytes += "data";
    append(bytes, dataBytes, 4);
    bytes.append(reinterpret_cast<const char*>(samples.data()), dataBytes);
    return bytes;
}

/// South pole, the first group with the north pole behind it, then 71 groups of 35 elevations each.
std::vector<float> responses(std::size_t length) {
    constexpr std::size_t groupCount = 72;
    constexpr std::size_t elevationCount = 35;
    std::vector<float> samples;
    const auto add = [&](double side) {
        const std::size_t start = samples.size();
        samples.resize(start + 2 * length);
        samples[start + 2 * 4] = static_cast<float>(0.6 - 0.4 * side);
        samples[start + 2 * 4 + 1] = static_cast<float>(0.6 + 0.4 * side);
    };
    add(0.0);
    for (std::size_t group = 0; group < groupCount; ++group) {
        const double azimuth = static_cast<double>(group) * 5.0 * std::numbers::pi / 180.0;
        for (std::size_t elevation = 0; elevation < elevationCount; ++elevation)
            add(std::sin(azimuth));
        if (group == 0)
            add(0.0);
    }
    return samples;
}

} // namespace

TestDataFolder::TestDataFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "kestrum-data-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("no temporary folder");
    folder = pattern;
}

TestDataFolder::~TestDataFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

void TestDataFolder::fill() const {
    const auto write = [this](const char* name, std::uint32_t sampleRate, std::size_t length) {
        const std::string bytes = waveFile(sampleRate, responses(length));
        std::ofstream(folder / name, std::ios::binary)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    };
    write("OVNdata122.dat", 24000, 70);
    write("OVNdata120.dat", 44100, 128);
    write("OVNdata121.dat", 48000, 139);
    writeReverbFiles(folder);
}

const TestDataFolder& TestDataFolder::filled() {
    static const TestDataFolder folder;
    static const bool isFilled = [] {
        folder.fill();
        return true;
    }();
    static_cast<void>(isFilled);
    return folder;
}

} // namespace test
