// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/IFileReader.h"
#include "room/IReverbImpulseResponse.h"
#include "room/SharedSamples.h"

#include <cstdint>

namespace orvane {

/// Reads its file anew at every load(), since the folder may have changed, but holds what others hold already.
class ReverbImpulseResponse final : public IReverbImpulseResponse {
public:
    /// @param reader borrowed for the length of load().
    explicit ReverbImpulseResponse(const IFileReader* reader) noexcept;

    void load(double sampleRate, std::int32_t fileRate, std::uint32_t roomId,
              const std::string& path) override;
    std::uint64_t frames() const noexcept ORVANE_REALTIME override;
    void copyTo(SampleBuffer& buffer) const ORVANE_REALTIME override;

private:
    const IFileReader* reader;
    SharedSamples samples;        ///< Interleaved, left and right, at the file's rate.
    std::uint64_t upsampling = 1; ///< From a stored frame to the next, in running ones; zeros stand between.
    float gain = 0;
};

} // namespace orvane
