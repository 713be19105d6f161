// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace test {

/// A folder of its own under the system's temporary one, removed with all its files.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "kestrum_test_XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr)
            throw std::runtime_error("no temporary folder");
        folder = pattern;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string path() const { return folder.string(); }
    std::string file(std::string_view name) const { return (folder / name).string(); }

private:
    std::filesystem::path folder;
};

/// The bytes of a value as they lie in a little-endian file.
template <typename T>
std::string bytesOf(T value) {
    static_assert(std::is_trivially_copyable_v<T>);
    std::string bytes(sizeof(T), '\0');
    std::memcpy(bytes.data(), &value, sizeof(T));
    return bytes;
}

/// The fields of a WAV header that a test may want wrong; those left out are what the samples make them.
struct WaveHeader {
    std::uint16_t formatTag = 3; ///< 3 float, 1 integer.
    std::uint16_t channels = 2;
    std::uint32_t sampleRate = 48000;
    std::uint16_t bits = 32;
    std::string chunksBeforeData = {};         ///< Whole chunks between "fmt " and "data".
    std::optional<std::int32_t> dataSize = {}; ///< In bytes.
};

/// A RIFF/WAVE file of 44 bytes of header, then the samples as they lie in memory.
template <typename Sample>
std::string waveBytes(const WaveHeader& header, const std::vector<Sample>& samples) {
    std::string data(samples.size() * sizeof(Sample), '\0');
    if (!samples.empty())
        std::memcpy(data.data(), samples.data(), data.size());
    const auto frameBytes = static_cast<std::uint16_t>(header.channels * (header.bits / 8));
    const std::string body = "WAVEfmt " + bytesOf(std::uint32_t{16}) + bytesOf(header.formatTag) +
                             bytesOf(header.channels) + bytesOf(header.sampleRate) +
                             bytesOf(header.sampleRate * frameBytes) + bytesOf(frameBytes) +
                             bytesOf(header.bits) + header.chunksBeforeData + "data" +
                             bytesOf(header.dataSize.value_or(static_cast<std::int32_t>(data.size()))) + data;
    return "RIFF" + bytesOf(static_cast<std::uint32_t>(body.size())) + body;
}

inline void writeBytes(const std::string& path, const std::string& bytes) {
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!stream.flush())
        throw std::runtime_error("cannot write " + path);
}

inline std::string readBytes(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace test
