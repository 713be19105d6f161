// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "room/IReverbFilterFactory.h"

namespace orvane {

class ReverbFilterFactory final : public IReverbFilterFactory {
public:
    std::unique_ptr<IReverbFilter> create(double sampleRate, std::uint64_t blockSize,
                                          std::unique_ptr<IReverbImpulseResponse> impulseResponse,
                                          const std::string& dataDirectory,
                                          std::uint32_t roomId) const override;
};

} // namespace orvane
