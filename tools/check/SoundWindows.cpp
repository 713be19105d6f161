// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/SoundWindows.h"

#include "check/Base64.h"
#include "check/CheckError.h"
#include "check/OggSerial.h"

#include <sndfile.h>
#include <soxr.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace orvane::kestrum::check {

namespace {

/// About 165 kbit/s; at this rate stereo music is held to be transparent. 0 would be the largest, 1 the smallest.
constexpr double compressionLevel = 0.7;

/// A file in memory, as the sound library wants it.
struct MemoryFile {
    std::string bytes;
    std::size_t position = 0;
};

MemoryFile& fileOf(void* user) { return *static_cast<MemoryFile*>(user); }

sf_count_t lengthOf(void* user) { return static_cast<sf_count_t>(fileOf(user).bytes.size()); }

sf_count_t seekIn(sf_count_t offset, int whence, void* user) {
    MemoryFile& file = fileOf(user);
    const sf_count_t base = whence == SEEK_SET   ? 0
                            : whence == SEEK_CUR ? static_cast<sf_count_t>(file.position)
                                                 : lengthOf(user);
    file.position = static_cast<std::size_t>(std::max<sf_count_t>(0, base + offset));
    return static_cast<sf_count_t>(file.position);
}

sf_count_t readFrom(void* target, sf_count_t count, void* user) {
    MemoryFile& file = fileOf(user);
    const std::size_t left = file.bytes.size() - std::min(file.position, file.bytes.size());
    const std::size_t taken = std::min(static_cast<std::size_t>(count), left);
    std::memcpy(target, file.bytes.data() + file.position, taken);
    file.position += taken;
    return static_cast<sf_count_t>(taken);
}

sf_count_t writeTo(const void* source, sf_count_t count, void* user) {
    MemoryFile& file = fileOf(user);
    const auto size = static_cast<std::size_t>(count);
    file.bytes.resize(std::max(file.bytes.size(), file.position + size));
    std::memcpy(file.bytes.data() + file.position, source, size);
    file.position += size;
    return count;
}

sf_count_t placeIn(void* user) { return static_cast<sf_count_t>(fileOf(user).position); }

} // namespace

std::string encodeOpus(std::span<const float> interleaved) {
    MemoryFile file;
    SF_VIRTUAL_IO memory{lengthOf, seekIn, readFrom, writeTo, placeIn};
    SF_INFO info{};
    info.samplerate = static_cast<int>(windows::sampleRate);
    info.channels = 2;
    info.format = SF_FORMAT_OGG | SF_FORMAT_OPUS;
    SNDFILE* const handle = sf_open_virtual(&memory, SFM_WRITE, &info, &file);
    if (handle == nullptr)
        throw CheckError("The sound library has no Opus: install libsndfile 1.1 or later.");
    double level = compressionLevel;
    sf_command(handle, SFC_SET_COMPRESSION_LEVEL, &level, sizeof level);
    const auto frames = static_cast<sf_count_t>(interleaved.size() / 2);
    const bool written = sf_writef_float(handle, interleaved.data(), frames) == frames;
    if (sf_close(handle) != 0 || !written)
        throw CheckError("The sound library could not encode the page's sound: free some memory.");
    setOggSerial(file.bytes, 1);
    return std::move(file.bytes);
}

struct SoundWindows::Resampler {
    explicit Resampler(unsigned rate) : inputRate(rate) {
        if (rate == windows::sampleRate)
            return;
        const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
        handle = soxr_create(rate, windows::sampleRate, 2, nullptr, nullptr, &quality, nullptr);
        if (handle == nullptr)
            throw CheckError("The mix cannot be resampled for the page: free some memory.");
    }
    Resampler(const Resampler&) = delete;
    Resampler& operator=(const Resampler&) = delete;
    ~Resampler() { soxr_delete(handle); }

    /// Appends what comes out; without input, what is still inside.
    void run(std::span<const float> interleaved, std::vector<float>& out) {
        if (handle == nullptr) {
            out.insert(out.end(), interleaved.begin(), interleaved.end());
            return;
        }
        const std::size_t frames = interleaved.size() / 2;
        std::vector<float> piece(2 * (frames * windows::sampleRate / inputRate + 4096));
        std::size_t made = 0;
        do {
            soxr_process(handle, interleaved.empty() ? nullptr : interleaved.data(), frames, nullptr,
                         piece.data(), piece.size() / 2, &made);
            out.insert(out.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(2 * made));
        } while (interleaved.empty() && made > 0);
    }

    unsigned inputRate;
    soxr_t handle = nullptr;
};

SoundWindows::SoundWindows(unsigned sampleRate)
    : resampler(std::make_unique<Resampler>(sampleRate)), held(2 * windows::leadFrames) {}

SoundWindows::~SoundWindows() = default;

void SoundWindows::encodeWholeWindows() {
    constexpr std::size_t whole = 2 * windows::encodedFrames;
    while (held.size() >= whole) {
        done.push_back(base64(encodeOpus(std::span<const float>(held).first(whole))));
        held.erase(held.begin(), held.begin() + static_cast<std::ptrdiff_t>(2 * windows::windowFrames));
    }
}

void SoundWindows::add(std::span<const float> interleaved) {
    resampler->run(interleaved, held);
    encodeWholeWindows();
}

std::vector<std::string> SoundWindows::finish() {
    resampler->run({}, held);
    encodeWholeWindows();
    std::size_t music = held.size(); // with the lead before it
    while (music > 2 * windows::leadFrames) {
        held.resize(2 * windows::encodedFrames);
        encodeWholeWindows();
        music -= std::min<std::size_t>(music, 2 * windows::windowFrames);
    }
    return std::move(done);
}

} // namespace orvane::kestrum::check
