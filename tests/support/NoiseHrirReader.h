// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/IHrirReader.h"
#include "data/IIrFile.h"
#include "data/WaveFrames.h"
#include "support/Signals.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace test {

/// Fills the product's own store, with its grid and its rates, without a file: fading noise of its own for each
/// direction and ear.
class NoiseHrirReader final : public orvane::IHrirReader {
public:
    void read(const orvane::IIrFile& file, std::vector<float>& samples) override {
        const auto rate = static_cast<std::int32_t>(file.sampleRate());
        const auto factor = static_cast<std::size_t>(rate / file.nativeSampleRate());
        const std::size_t length = file.length() / factor;
        samples = noise(2 * length * file.responseCount(), Seed{77});
        for (std::size_t i = 0; i < samples.size(); ++i)
            samples[i] *= std::exp(-5.0f * static_cast<float>(i / 2 % length) / static_cast<float>(length));
        samples.resize(samples.size() * factor);
        orvane::zeroStuff(samples, file.nativeSampleRate(), rate, 2);
    }
};

} // namespace test
