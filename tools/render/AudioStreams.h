// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

namespace orvane::kestrum::render {

/// Where a rendering takes its frames from.
class IAudioSource {
public:
    virtual ~IAudioSource() = default;
    virtual unsigned channelCount() const = 0;
    virtual std::uint64_t frameCount() const = 0;
    /// Fills [channelCount()][frames] with the next frames, and with zeros behind the last.
    virtual void read(std::span<float* const> channels, std::uint64_t frames) = 0;
};

/// Where a result goes.
class IAudioSink {
public:
    virtual ~IAudioSink() = default;
    /// Shape   [frames][channels], interleaved; 2 channels unless the sink was made for more.
    virtual void write(std::span<const float> interleaved) = 0;
};

/// A sound file of any kind that libsndfile reads.
class SoundFileSource final : public IAudioSource {
public:
    /// @throws RenderError when the file cannot be read.
    explicit SoundFileSource(const std::filesystem::path& path);
    ~SoundFileSource() override;

    unsigned channelCount() const override;
    std::uint64_t frameCount() const override;
    unsigned sampleRate() const;
    /// @throws RenderError when the file ends before its promised length.
    void read(std::span<float* const> channels, std::uint64_t frames) override;

private:
    struct File;
    std::unique_ptr<File> file;
};

/// A WAV file of 32-bit float samples.
class SoundFileSink final : public IAudioSink {
public:
    /// @throws RenderError when the file cannot be made.
    SoundFileSink(const std::filesystem::path& path, unsigned sampleRate, unsigned channelCount = 2);
    ~SoundFileSink() override;

    /// @throws RenderError when the disk takes no more.
    void write(std::span<const float> interleaved) override;
    /// Ends the file. @throws RenderError when its last bytes cannot be written.
    void close();

private:
    struct File;
    std::unique_ptr<File> file;
};

} // namespace orvane::kestrum::render
