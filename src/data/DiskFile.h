// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/IIrFile.h"

#include <utility>

namespace orvane {

class DiskFile final : public IIrFile {
public:
    DiskFile(std::string filePath, double runningRate, bool isStoredLower, std::int32_t storedRate,
             std::uint64_t responseLength)
        : filePath(std::move(filePath)),
          upsampled(isStoredLower),
          nativeRate(storedRate),
          samples(responseLength),
          rate(runningRate) {}

    std::string label() const override { return fileLabel; }
    std::string path() const override { return filePath; }
    bool isUpsampled() const noexcept override { return upsampled; }
    std::int32_t nativeSampleRate() const noexcept override { return nativeRate; }
    std::uint64_t length() const noexcept override { return samples; }
    std::uint64_t responseCount() const noexcept override { return responses; }
    double sampleRate() const noexcept override { return rate; }

private:
    std::uint64_t responses = 2522; ///< 72 azimuths times 35 elevations, and the two poles.
    std::string fileLabel = "0";
    std::string filePath;
    bool upsampled;
    std::int32_t nativeRate;
    std::uint64_t samples;
    double rate;
};

} // namespace orvane
