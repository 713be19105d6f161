// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/HeadRotationMatrix.h"
#include "parameters/core/ISpeakerParameterSetView.h"

#include <limits>

namespace test {

/// Everything that a loudspeaker's response depends on, each value open to the test and independent of the
/// others: the product's own sets derive the far fade from the distance.
struct SourceView final : orvane::kestrum::core::ISpeakerParameterSetView {
    float azimuth = 0;
    float elevation = 0;
    float distance = 3;
    float distanceScale = 1;
    float azimuthExponent = 1;
    float farFade = 1;
    float reflectionGainDb = 0;
    float lowPass = 20000;
    float highPass = 20;
    float clarity = 0;
    float ceiling = 1.8f;
    float floor = 1.6f;
    float right = 10.5f;
    float left = 5.5f;
    float front = 8;
    float back = 11;
    orvane::HeadRotationMatrix rotation = orvane::identityRotation;

    float getAzimuth() const noexcept override { return azimuth; }
    float getElevation() const noexcept override { return elevation; }
    float getReflectionLowPassFrequency() const noexcept override { return lowPass; }
    float getFarFade() const noexcept override { return farFade; }
    orvane::HeadRotationMatrix getHeadRotation() const noexcept override { return rotation; }
    float getAzimuthExponent() const noexcept override { return azimuthExponent; }
    float getDistance() const noexcept override { return distance; }
    float getDistanceScale() const noexcept override { return distanceScale; }
    float getReflectionGainDb() const noexcept override { return reflectionGainDb; }
    float getCeilingDistance() const noexcept override { return ceiling; }
    float getFloorDistance() const noexcept override { return floor; }
    float getRightDistance() const noexcept override { return right; }
    float getLeftDistance() const noexcept override { return left; }
    float getFrontDistance() const noexcept override { return front; }
    float getBackDistance() const noexcept override { return back; }
    float getReflectionHighPassFrequency() const noexcept override { return highPass; }
    float getClarity() const noexcept override { return clarity; }

    // What reflections must not depend on poisons whoever asks.
    float getDirectGainDb() const noexcept override { return poison; }
    float getSpatialValue4() const noexcept override { return poison; }
    float getAttenuationValue() const noexcept override { return poison; }
    float getDistanceLevel() const noexcept override { return poison; }
    float getAttenuationDb() const noexcept override { return poison; }
    float getFloorLevelDb() const noexcept override { return poison; }

private:
    static constexpr float poison = std::numeric_limits<float>::quiet_NaN();
};

} // namespace test
