// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane::kestrum::core {

struct LayoutRow;

/// Turns listed layouts into the form that the product works with.
class ISpeakerPropertiesConverter {
public:
    virtual ~ISpeakerPropertiesConverter() = default;

    /// Appends the layout, with its identifier and channel count worked out.
    virtual void add(const LayoutRow& layoutEntry) = 0;
};

} // namespace orvane::kestrum::core
