// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "pictures/Picture.h"
#include "pictures/Stage.h"

namespace orvane::kestrum::pictures {

inline constexpr Colour raisedAccent = fromBytes(170, 208, 255); ///< Loudspeakers above ear level.

/// Colour that tells ear level, heights and the low-frequency channel apart.
Colour accentOf(const core::SpeakerRow& speaker) noexcept;

/// A loudspeaker's box on its place, turned to the listener.
void drawCabinet(Canvas& canvas, const StagedSpeaker& staged);

} // namespace orvane::kestrum::pictures
