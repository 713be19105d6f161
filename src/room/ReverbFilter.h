// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "room/IReverbFilter.h"
#include "room/IReverbImpulseResponse.h"

#include <memory>
#include <string>

namespace orvane {

class ReverbFilter final : public IReverbFilter {
public:
    /// Reads the room's response from its file.
    ///
    /// Units   sampleRate in hertz, blockSize in samples.
    /// Errors  sampleRateNotSupportedException, wavNotReadableException.
    ReverbFilter(double sampleRate, std::uint64_t blockSize,
                 std::unique_ptr<IReverbImpulseResponse> impulseResponse, const std::string& dataDirectory,
                 std::uint32_t roomId);

    void update(SampleBuffer& buffer, float decay) ORVANE_REALTIME override;
    std::uint64_t partitionCount() const noexcept override;
    std::int32_t bandLimitFactor() const noexcept override;
    bool changed() const noexcept ORVANE_REALTIME override;

private:
    std::unique_ptr<IReverbImpulseResponse> impulseResponse;
    std::uint64_t partitions;
    std::uint64_t paddedLength; ///< Samples: whole partitions.
    std::int32_t upsampling;
    bool hasChanged = false;
    float lastDecay; ///< Percent; not a number at first, so that the first comparison differs.
};

} // namespace orvane
