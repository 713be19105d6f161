// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IHrir.h"
#include "parameters/IViewSnapshot.h"
#include "parameters/core/ISpeakerParameterSetView.h"

#include <cstdint>

namespace orvane::kestrum::core {

/// A loudspeaker's view as it was when it was taken last, so that whoever draws from it in a block draws from
/// one state, and can tell whether that state is the last block's.
///
/// Thread  constructed on a building thread, then the audio thread only.
class SpeakerViewSnapshot final : public ISpeakerParameterSetView, public IViewSnapshot {
public:
    /// Takes the values for the first time; the next take() says that they are new.
    ///
    /// @param view, hrir borrowed. The store's generation counts as one of the values.
    SpeakerViewSnapshot(const ISpeakerParameterSetView* view, const IHrir* hrir) noexcept;

    bool take() noexcept ORVANE_REALTIME override;

    float getAzimuth() const noexcept override { return values.azimuth; }
    float getElevation() const noexcept override { return values.elevation; }
    float getDirectGainDb() const noexcept override { return values.directGainDb; }
    float getSpatialValue4() const noexcept override { return values.spatialValue4; }
    float getAttenuationValue() const noexcept override { return values.attenuationValue; }
    float getReflectionLowPassFrequency() const noexcept override {
        return values.reflectionLowPassFrequency;
    }
    float getDistanceLevel() const noexcept override { return values.distanceLevel; }
    float getFarFade() const noexcept override { return values.farFade; }
    float getAttenuationDb() const noexcept override { return values.attenuationDb; }
    HeadRotationMatrix getHeadRotation() const noexcept override { return values.headRotation; }
    float getAzimuthExponent() const noexcept override { return values.azimuthExponent; }
    float getFloorLevelDb() const noexcept override { return values.floorLevelDb; }
    float getDistance() const noexcept override { return values.distance; }
    float getDistanceScale() const noexcept override { return values.distanceScale; }
    float getReflectionGainDb() const noexcept override { return values.reflectionGainDb; }
    float getCeilingDistance() const noexcept override { return values.ceilingDistance; }
    float getFloorDistance() const noexcept override { return values.floorDistance; }
    float getRightDistance() const noexcept override { return values.rightDistance; }
    float getLeftDistance() const noexcept override { return values.leftDistance; }
    float getFrontDistance() const noexcept override { return values.frontDistance; }
    float getBackDistance() const noexcept override { return values.backDistance; }
    float getReflectionHighPassFrequency() const noexcept override {
        return values.reflectionHighPassFrequency;
    }
    float getClarity() const noexcept override { return values.clarity; }

private:
    /// Compared as bytes: nothing but 32-bit fields, an even number of them in front of the generation.
    struct Values {
        HeadRotationMatrix headRotation = identityRotation;
        float azimuth = 0;
        float elevation = 0;
        float directGainDb = 0;
        float spatialValue4 = 0;
        float attenuationValue = 0;
        float reflectionLowPassFrequency = 0;
        float distanceLevel = 0;
        float farFade = 0;
        float attenuationDb = 0;
        float azimuthExponent = 0;
        float floorLevelDb = 0;
        float distance = 0;
        float distanceScale = 0;
        float reflectionGainDb = 0;
        float ceilingDistance = 0;
        float floorDistance = 0;
        float rightDistance = 0;
        float leftDistance = 0;
        float frontDistance = 0;
        float backDistance = 0;
        float reflectionHighPassFrequency = 0;
        float clarity = 0;
        std::uint64_t generation = 0;
    };

    Values present() const noexcept ORVANE_REALTIME;

    const ISpeakerParameterSetView* view;
    const IHrir* hrir;
    Values values;
    bool taken = false; ///< By take().
};

} // namespace orvane::kestrum::core
