// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/core/ISelectorFallback.h"

namespace orvane::kestrum::core {

class ISupportedLayouts;

/// Falls back to "2.0 +/-30°".
class SpeakerSetupFallback final : public ISelectorFallback {
public:
    /// @param supportedLayouts borrowed, outlives this.
    explicit SpeakerSetupFallback(const ISupportedLayouts* supportedLayouts);

    std::uint32_t fallback(std::uint32_t id) const override;

private:
    const ISupportedLayouts* supportedLayouts;
    std::uint32_t defaultId;
};

} // namespace orvane::kestrum::core
