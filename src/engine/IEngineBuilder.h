// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ISupportedLayouts.h"

#include <memory>

namespace orvane::kestrum::core {

class Engine;

/// Fills a new engine with the loudspeakers of a layout.
class IEngineBuilder {
public:
    virtual ~IEngineBuilder() = default;

    /// Takes the engine, adds one source per entry of `properties.speakers`, and gives it back.
    /// Errors  throws what making a loudspeaker throws; the engine is then gone.
    virtual std::unique_ptr<Engine> build(const ISupportedLayouts::Properties& properties,
                                          std::unique_ptr<Engine> engine) = 0;
};

} // namespace orvane::kestrum::core
