// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Realtime.h"

namespace orvane::kestrum::core {

/// Writes rendering parameters from one or two user values.
///
/// Thread  the thread that changes the user value; update() also on the audio thread after an engine swap.
///         Two threads may interleave: the last write of each parameter wins.
class IParameterMapper {
public:
    virtual ~IParameterMapper() = default;

    /// Writes all continuous parameters of this mapper without notifying anybody.
    ///
    /// Errors  std::out_of_range when the Scene value is no Scene's identifier, which the fallbacks prevent.
    virtual void update() ORVANE_REALTIME = 0;
};

} // namespace orvane::kestrum::core
