// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/core/ISpeakerParameterSetView.h"

namespace orvane::kestrum::core {

/// What a speaker's view says at one moment, but for the head rotation.
struct SpeakerValues {
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
};

inline SpeakerValues speakerValuesOf(const ISpeakerParameterSetView& view) noexcept ORVANE_REALTIME {
    return {
        .azimuth = view.getAzimuth(),
        .elevation = view.getElevation(),
        .directGainDb = view.getDirectGainDb(),
        .spatialValue4 = view.getSpatialValue4(),
        .attenuationValue = view.getAttenuationValue(),
        .reflectionLowPassFrequency = view.getReflectionLowPassFrequency(),
        .distanceLevel = view.getDistanceLevel(),
        .farFade = view.getFarFade(),
        .attenuationDb = view.getAttenuationDb(),
        .azimuthExponent = view.getAzimuthExponent(),
        .floorLevelDb = view.getFloorLevelDb(),
        .distance = view.getDistance(),
        .distanceScale = view.getDistanceScale(),
        .reflectionGainDb = view.getReflectionGainDb(),
        .ceilingDistance = view.getCeilingDistance(),
        .floorDistance = view.getFloorDistance(),
        .rightDistance = view.getRightDistance(),
        .leftDistance = view.getLeftDistance(),
        .frontDistance = view.getFrontDistance(),
        .backDistance = view.getBackDistance(),
        .reflectionHighPassFrequency = view.getReflectionHighPassFrequency(),
        .clarity = view.getClarity(),
    };
}

} // namespace orvane::kestrum::core
