// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/IIrFile.h"

namespace orvane {

/// A file of the data folder.
class DiskFile final : public IIrFile {
public:
    DiskFile(std::string path, double sampleRate, bool upsampled, std::int32_t nativeSampleRate,
             std::uint64_t length) noexcept;

    std::string label() const override;
    std::string path() const override;
    bool isUpsampled() const noexcept override;
    std::int32_t nativeSampleRate() const noexcept override;
    std::uint64_t length() const noexcept override;
    std::uint64_t responseCount() const noexcept override;
    double sampleRate() const noexcept override;

private:
    std::string filePath;
    bool upsampled = false;
    std::int32_t storedRate = 48000;
    std::uint64_t responseLength = 0;
    double runningRate = 44100.0;
};

} // namespace orvane
