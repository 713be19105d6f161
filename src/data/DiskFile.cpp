// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/DiskFile.h"

#include <utility>

namespace orvane {

DiskFile::DiskFile(std::string path, double sampleRate, bool upsampled, std::int32_t nativeSampleRate,
                   std::uint64_t length) noexcept
    : filePath(std::move(path)),
      upsampled(upsampled),
      storedRate(nativeSampleRate),
      responseLength(length),
      runningRate(sampleRate) {}

std::string DiskFile::label() const { return "0"; }
std::string DiskFile::path() const { return filePath; }
bool DiskFile::isUpsampled() const noexcept { return upsampled; }
std::int32_t DiskFile::nativeSampleRate() const noexcept { return storedRate; }
std::uint64_t DiskFile::length() const noexcept { return responseLength; }
std::uint64_t DiskFile::responseCount() const noexcept {
    return 2522;
} // 72 azimuths x 35 elevations, 2 poles
double DiskFile::sampleRate() const noexcept { return runningRate; }

} // namespace orvane
