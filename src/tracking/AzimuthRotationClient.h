// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/HeadRotationMatrix.h"
#include "base/Realtime.h"
#include "ipc/IHeadRotationClient.h"

namespace orvane::kestrum::core {

class ISliderValue;

/// The rotation that the user's own dial gives: a turn about the vertical axis.
///
/// Units   the value is an azimuth in degrees; at θ a source ahead moves to azimuth -θ, as it does for a head
///         that turns right by θ.
/// Thread  any, wait-free.
class AzimuthRotationClient final : public OrvaneIPC::IHeadRotationClient {
public:
    /// @param headRotation borrowed, outlives this; read at every query, so it is the atomic kind.
    explicit AzimuthRotationClient(const ISliderValue* headRotation) noexcept : headRotation(headRotation) {}

    /// Always false: the dial never claims the rotation for itself.
    bool isActive() const noexcept override { return false; }

    /// The identity byte for byte at 0, which SpatialPosition::rotate() recognises.
    HeadRotationMatrix getRotation() const noexcept override;

private:
    const ISliderValue* headRotation;
};

} // namespace orvane::kestrum::core
