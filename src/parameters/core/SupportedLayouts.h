// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ISupportedLayouts.h"

#include <vector>

namespace orvane::kestrum::core {

class IComponentFactory;

/// The 32 layouts, built once and never changed. Lookups compare identifiers and hash nothing.
class SupportedLayouts final : public ISupportedLayouts {
public:
    /// @param factory gives the converter that fills the table; only used inside the constructor.
    explicit SupportedLayouts(const IComponentFactory& factory);

    void forEach(std::function<void(const Properties&)> visit) const override;
    const Properties& get(std::uint32_t id) const override;

private:
    std::vector<Properties> layouts;
};

} // namespace orvane::kestrum::core
