// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IHrir.h"
#include "parameters/IViewSnapshot.h"
#include "parameters/core/SpeakerValues.h"

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

    float getAzimuth() const noexcept override { return values.speaker.azimuth; }
    float getElevation() const noexcept override { return values.speaker.elevation; }
    float getDirectGainDb() const noexcept override { return values.speaker.directGainDb; }
    float getSpatialValue4() const noexcept override { return values.speaker.spatialValue4; }
    float getAttenuationValue() const noexcept override { return values.speaker.attenuationValue; }
    float getReflectionLowPassFrequency() const noexcept override {
        return values.speaker.reflectionLowPassFrequency;
    }
    float getDistanceLevel() const noexcept override { return values.speaker.distanceLevel; }
    float getFarFade() const noexcept override { return values.speaker.farFade; }
    float getAttenuationDb() const noexcept override { return values.speaker.attenuationDb; }
    HeadRotationMatrix getHeadRotation() const noexcept override { return values.headRotation; }
    float getAzimuthExponent() const noexcept override { return values.speaker.azimuthExponent; }
    float getFloorLevelDb() const noexcept override { return values.speaker.floorLevelDb; }
    float getDistance() const noexcept override { return values.speaker.distance; }
    float getDistanceScale() const noexcept override { return values.speaker.distanceScale; }
    float getReflectionGainDb() const noexcept override { return values.speaker.reflectionGainDb; }
    float getCeilingDistance() const noexcept override { return values.speaker.ceilingDistance; }
    float getFloorDistance() const noexcept override { return values.speaker.floorDistance; }
    float getRightDistance() const noexcept override { return values.speaker.rightDistance; }
    float getLeftDistance() const noexcept override { return values.speaker.leftDistance; }
    float getFrontDistance() const noexcept override { return values.speaker.frontDistance; }
    float getBackDistance() const noexcept override { return values.speaker.backDistance; }
    float getReflectionHighPassFrequency() const noexcept override {
        return values.speaker.reflectionHighPassFrequency;
    }
    float getClarity() const noexcept override { return values.speaker.clarity; }

private:
    /// Compared as bytes: nothing but 32-bit fields, an even number of them in front of the generation.
    struct Values {
        HeadRotationMatrix headRotation = identityRotation;
        SpeakerValues speaker;
        std::uint64_t generation = 0;
    };

    Values present() const noexcept ORVANE_REALTIME;

    const ISpeakerParameterSetView* view;
    const IHrir* hrir;
    Values values;
    bool taken = false; ///< By take().
};

} // namespace orvane::kestrum::core
