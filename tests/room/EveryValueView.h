// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/HeadRotationMatrix.h"
#include "parameters/core/ISpeakerParameterSetView.h"

#include <array>
#include <cstddef>

namespace test {

/// A view of values that can be walked through one by one.
struct EveryValueView final : orvane::kestrum::core::ISpeakerParameterSetView {
    enum Name : std::size_t {
        azimuth,
        elevation,
        directGainDb,
        spatialValue4,
        attenuationValue,
        reflectionLowPass,
        distanceLevel,
        farFade,
        attenuationDb,
        azimuthExponent,
        floorLevelDb,
        distance,
        distanceScale,
        reflectionGainDb,
        ceiling,
        floor,
        right,
        left,
        front,
        back,
        reflectionHighPass,
        clarity,
        count
    };

    std::array<float, count> values{33,   12, -2, 0,    0,    9000,  0.7f, 0.9f, 0,  1.4f, 0,
                                    2.5f, 1,  1,  1.8f, 1.6f, 10.5f, 5.5f, 8,    11, 150,  0.5f};
    orvane::HeadRotationMatrix rotation = orvane::identityRotation;

    float getAzimuth() const noexcept override { return values[azimuth]; }
    float getElevation() const noexcept override { return values[elevation]; }
    float getDirectGainDb() const noexcept override { return values[directGainDb]; }
    float getSpatialValue4() const noexcept override { return values[spatialValue4]; }
    float getAttenuationValue() const noexcept override { return values[attenuationValue]; }
    float getReflectionLowPassFrequency() const noexcept override { return values[reflectionLowPass]; }
    float getDistanceLevel() const noexcept override { return values[distanceLevel]; }
    float getFarFade() const noexcept override { return values[farFade]; }
    float getAttenuationDb() const noexcept override { return values[attenuationDb]; }
    orvane::HeadRotationMatrix getHeadRotation() const noexcept override { return rotation; }
    float getAzimuthExponent() const noexcept override { return values[azimuthExponent]; }
    float getFloorLevelDb() const noexcept override { return values[floorLevelDb]; }
    float getDistance() const noexcept override { return values[distance]; }
    float getDistanceScale() const noexcept override { return values[distanceScale]; }
    float getReflectionGainDb() const noexcept override { return values[reflectionGainDb]; }
    float getCeilingDistance() const noexcept override { return values[ceiling]; }
    float getFloorDistance() const noexcept override { return values[floor]; }
    float getRightDistance() const noexcept override { return values[right]; }
    float getLeftDistance() const noexcept override { return values[left]; }
    float getFrontDistance() const noexcept override { return values[front]; }
    float getBackDistance() const noexcept override { return values[back]; }
    float getReflectionHighPassFrequency() const noexcept override { return values[reflectionHighPass]; }
    float getClarity() const noexcept override { return values[clarity]; }
};

} // namespace test
