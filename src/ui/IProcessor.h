// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane::kestrum {
class IProcessor {
public:
    virtual ~IProcessor() = default;
};
} // namespace orvane::kestrum
