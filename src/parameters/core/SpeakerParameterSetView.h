// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/SpatialPosition.h"
#include "parameters/core/ISpeakerParameterSetView.h"

namespace orvane::kestrum::core {

/// The whole set as one virtual loudspeaker sees it: its own place, everything else forwarded.
///
/// Deliberate: the distance law and the far fade are the set's, made of the Scene's source distance, while
/// getDistance() is the loudspeaker's own.
///
/// Thread  any, wait-free.
class SpeakerParameterSetView final : public ISpeakerParameterSetView {
public:
    /// @param view borrowed, outlives this.
    SpeakerParameterSetView(const SpatialPosition& position, const ISpeakerParameterSetView* view) noexcept
        : position(position), view(view) {}

    float getAzimuth() const noexcept override { return position.azimuth; }
    float getElevation() const noexcept override { return position.elevation; }
    float getDistance() const noexcept override { return position.distance; }

    float getDirectGainDb() const noexcept override { return view->getDirectGainDb(); }
    float getSpatialValue4() const noexcept override { return view->getSpatialValue4(); }
    float getAttenuationValue() const noexcept override { return view->getAttenuationValue(); }
    float getReflectionLowPassFrequency() const noexcept override {
        return view->getReflectionLowPassFrequency();
    }
    float getDistanceLevel() const noexcept override { return view->getDistanceLevel(); }
    float getFarFade() const noexcept override { return view->getFarFade(); }
    float getAttenuationDb() const noexcept override { return view->getAttenuationDb(); }
    HeadRotationMatrix getHeadRotation() const noexcept override { return view->getHeadRotation(); }
    float getAzimuthExponent() const noexcept override { return view->getAzimuthExponent(); }
    float getFloorLevelDb() const noexcept override { return view->getFloorLevelDb(); }
    float getDistanceScale() const noexcept override { return view->getDistanceScale(); }
    float getReflectionGainDb() const noexcept override { return view->getReflectionGainDb(); }
    float getCeilingDistance() const noexcept override { return view->getCeilingDistance(); }
    float getFloorDistance() const noexcept override { return view->getFloorDistance(); }
    float getRightDistance() const noexcept override { return view->getRightDistance(); }
    float getLeftDistance() const noexcept override { return view->getLeftDistance(); }
    float getFrontDistance() const noexcept override { return view->getFrontDistance(); }
    float getBackDistance() const noexcept override { return view->getBackDistance(); }

    float getReflectionHighPassFrequency() const noexcept override {
        return view->getReflectionHighPassFrequency();
    }
    float getClarity() const noexcept override { return view->getClarity(); }

private:
    const SpatialPosition position;
    const ISpeakerParameterSetView* view;
};

} // namespace orvane::kestrum::core
