// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/IEngineBuilder.h"

namespace orvane::kestrum::core {

/// Stateless: one instance serves every thread.
class EngineBuilder final : public IEngineBuilder {
public:
    std::unique_ptr<Engine> build(const ISupportedLayouts::Properties& properties,
                                  std::unique_ptr<Engine> engine) override;
};

} // namespace orvane::kestrum::core
