// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/IFileReader.h"
#include "room/IReverbImpulseResponse.h"

#include <vector>

namespace orvane {

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
    std::vector<float> samples; ///< Interleaved, left and right.
    float gain = 0;
};

} // namespace orvane
