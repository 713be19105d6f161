// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "binaural/IUpdateChecker.h"
#include "parameters/ISpatialParameterSetView.h"

#include <array>
#include <cstdint>
#include <limits>

namespace orvane {

/// Watches the source, the room, both or neither.
///
/// Deliberate: without a watched source the answer is always yes. Drawing the response in every block and
/// fading from the last one is what keeps head rotation and every other change free of clicks.
class UpdateChecker final : public IUpdateChecker {
public:
    /// @param view borrowed.
    UpdateChecker(ISpatialParameterSetView* view, bool watchSource, bool watchRoom) noexcept;

    bool needsUpdate() ORVANE_REALTIME override;

private:
    static constexpr float neverSeen =
        -std::numeric_limits<float>::quiet_NaN(); ///< Bits 0xFFC00000; equals nothing.

    bool sourceChanged() ORVANE_REALTIME;
    bool roomChanged() ORVANE_REALTIME;

    ISpatialParameterSetView* view;
    /// Wall distances as last seen: front, back, right, left, ceiling, floor.
    std::array<float, 6> room{neverSeen, neverSeen, neverSeen, neverSeen, neverSeen, neverSeen};
    /// directGainDb, reflectionGainDb, reflectionLowPassFrequency, spatialValue4, distanceLevel as last seen.
    std::array<float, 5> source{0.0f, 0.0f, 20000.0f, 0.0f, 1.0f};
    std::int32_t azimuth = 0;   ///< Whole degrees.
    std::int32_t elevation = 0; ///< Whole degrees.
    float distance = 0.1f;      ///< Metres.
    bool watchSource;
    bool watchRoom;
};

} // namespace orvane
