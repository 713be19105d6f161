// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/TenmarshHrirReader.h"

#include "data/DataFileExceptions.h"
#include "data/SoundSamples.h"
#include "data/WaveFrames.h"

namespace orvane {

namespace {

void requireSound(const std::vector<float>& samples) {
    if (!areSound(samples))
        throw wavNotReadableException();
}

} // namespace

void TenmarshHrirReader::read(const IIrFile& file, std::vector<float>& samples) {
    constexpr std::uint16_t channels = 2;
    const std::uint64_t frames = file.length() * file.responseCount();
    samples.resize(channels * frames);
    if (!file.isUpsampled()) {
        readWaveFrames(file, samples, frames, channels);
        requireSound(samples);
        return;
    }
    const auto storedFrames = static_cast<std::uint64_t>(static_cast<double>(frames) /
                                                         (file.sampleRate() / file.nativeSampleRate()));
    readWaveFrames(file, samples, storedFrames, channels);
    requireSound(samples);
    zeroStuff(samples, file.nativeSampleRate(), static_cast<std::int32_t>(file.sampleRate()), channels);
}

} // namespace orvane
