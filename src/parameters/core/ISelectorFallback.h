// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace orvane::kestrum::core {

/// Keeps identifiers of other versions' names out of the selectors.
class ISelectorFallback {
public:
    virtual ~ISelectorFallback() = default;

    /// @return `id` when it is in the table, else the default entry's identifier.
    virtual std::uint32_t fallback(std::uint32_t id) const = 0;
};

} // namespace orvane::kestrum::core
