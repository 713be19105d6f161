// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ISupportedLayouts.h"
#include "parameters/core/ISpeakerPropertiesConverter.h"

#include <vector>

namespace orvane::kestrum::core {

/// Appends to a list that belongs to somebody else.
class SpeakerPropertiesConverter final : public ISpeakerPropertiesConverter {
public:
    /// @param layouts borrowed, outlives this.
    explicit SpeakerPropertiesConverter(std::vector<ISupportedLayouts::Properties>& layouts) noexcept
        : layouts(&layouts) {}

    void add(const LayoutRow& layoutEntry) override;

private:
    std::vector<ISupportedLayouts::Properties>* layouts;
};

} // namespace orvane::kestrum::core
