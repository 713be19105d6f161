// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/IReloadParameterSet.h"
#include "parameters/core/IReverbParameterView.h"

#include <optional>

namespace orvane::kestrum::core {

/// The decay that an engine's first block is likely to find. While an engine is built for the next Scene, the
/// parameters still hold the last one's decay; the room tells which Scene is coming.
///
/// Units   percent.
/// @return none if the engine has no reverb. Of several Scenes of the room, that of the present decay, or else
///         the first one.
std::optional<float> expectedDecay(const IReloadParameterSet& structure, const IReverbParameterView& view);

} // namespace orvane::kestrum::core
