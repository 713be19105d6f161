// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IEngine.h"

#include <cstdint>
#include <memory>

namespace orvane {

/// Makes engines for the engine manager.
///
/// Thread  setup thread or the manager's background task, one at a time.
/// Errors  both operations throw what building throws (files, memory); nothing half-built remains.
class IEngineFactory {
public:
    virtual ~IEngineFactory() = default;

    /// A new engine over the current values, which fades in from silence.
    virtual std::unique_ptr<IEngine> createEngine(std::uint64_t blockSize, double sampleRate) = 0;

    /// A new engine, wrapped with `oldEngine` so that the old one fades out while the new one fades in.
    virtual std::unique_ptr<IEngine> createCrossfadedEngine(std::shared_ptr<IEngine> oldEngine,
                                                            std::uint64_t blockSize, double sampleRate) = 0;
};

} // namespace orvane
