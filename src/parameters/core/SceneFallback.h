// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/core/ISelectorFallback.h"

namespace orvane::kestrum::core {

/// Falls back to "Mix Room".
class SceneFallback final : public ISelectorFallback {
public:
    std::uint32_t fallback(std::uint32_t id) const override;
};

} // namespace orvane::kestrum::core
