// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/IOutputFormat.h"

#include <cstdint>

namespace orvane {

/// The values that decide how an engine is built, frozen at one moment. An engine keeps its snapshot for
/// life, so that nothing structural changes under it.
class IReloadParameterSet {
public:
    virtual ~IReloadParameterSet() = default;

    virtual bool hasReverb() const noexcept = 0;         ///< Switched on, in a room that has a reverb.
    virtual bool reflectionsActive() const noexcept = 0; ///< Switched on, in any room at all.
    virtual bool watchSource() const noexcept = 0;   ///< Redraw a response only when its source has moved.
    virtual bool roomIsDynamic() const noexcept = 0; ///< Walls at the distances of the parameter set.
    virtual std::uint32_t roomId() const noexcept = 0;

    /// Never null; lives as long as the snapshot.
    virtual const IOutputFormat* getOutputFormat() const noexcept = 0;
};

} // namespace orvane
