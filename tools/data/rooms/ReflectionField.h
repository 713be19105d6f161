// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/rooms/DiffuseHead.h"
#include "data/rooms/RandomNumbers.h"
#include "data/rooms/RoomDescriptions.h"

namespace orvane::kestrum::tools {

/// Sound that reaches both ears, not yet decaying. What comes from everywhere and what comes from one place are kept
/// apart, since only the first is to have the coherence of a diffuse field.
///
/// Shape   each [2][binCount] of the transform: `length` samples are filled, and what rings before sample 0 stands at
///         the end.
/// Units   as heard through the head: noise of variance 1 in a field without a head.
struct ReflectionField {
    std::array<Spectrum, 2>
        diffuse; ///< Of a constant mean power per second from the room's first reflection on: single
                 ///< reflections that give way to noise by the mixing time.
    std::array<Spectrum, 2> slaps; ///< Zeros for a room without any.
};
ReflectionField reflectionField(const RoomDescription& room, const DiffuseHead& head, std::size_t length,
                                RealTransform& transform, RandomNumbers& random);

} // namespace orvane::kestrum::tools
