// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/ReverbFilterFactory.h"

#include "room/ReverbFilter.h"

#include <utility>

namespace orvane {

std::unique_ptr<IReverbFilter>
ReverbFilterFactory::create(double sampleRate, std::uint64_t blockSize,
                            std::unique_ptr<IReverbImpulseResponse> impulseResponse,
                            const std::string& dataDirectory, std::uint32_t roomId) const {
    return std::make_unique<ReverbFilter>(sampleRate, blockSize, std::move(impulseResponse), dataDirectory,
                                          roomId);
}

} // namespace orvane
