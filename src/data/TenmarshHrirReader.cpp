// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/TenmarshHrirReader.h"

#include "data/IIrFile.h"
#include "data/WaveFrames.h"
#include "data/ZeroStuff.h"

#include <cstdint>

namespace orvane {

void TenmarshHrirReader::read(const IIrFile& file, std::vector<float>& samples) {
    constexpr std::uint16_t channels = 2;
    const std::uint64_t count = file.length() * file.responseCount();
    samples.assign(channels * count, 0.0f);
    if (!file.isUpsampled()) {
        readWaveFrames(file, samples, count, channels);
        return;
    }
    const double ratio = file.sampleRate() / file.nativeSampleRate();
    readWaveFrames(file, samples, static_cast<std::uint64_t>(static_cast<double>(count) / ratio), channels);
    zeroStuff(samples, file.nativeSampleRate(), static_cast<std::int32_t>(file.sampleRate()), channels);
}

} // namespace orvane
