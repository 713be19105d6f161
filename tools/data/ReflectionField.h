// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/DiffuseHead.h"
#include "data/RandomNumbers.h"
#include "data/RoomDescriptions.h"

namespace orvane::kestrum::tools {

/// Sound that reaches both ears with a constant mean power per second from the room's first reflection on, not yet
/// decaying: single reflections that give way to noise by the mixing time, and the room's slaps.
///
/// Shape   [2][transformSize]; `length` samples are filled, and what rings before sample 0 stands at the end.
/// Units   as heard through the head: noise of variance 1 in a field without a head.
std::array<Spectrum, 2> reflectionField(const RoomDescription& room, const DiffuseHead& head,
                                        std::size_t length, RealTransform& transform, RandomNumbers& random);

} // namespace orvane::kestrum::tools
