// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/SpeakerViewSnapshot.h"

#include <cstring>
#include <utility>

namespace orvane::kestrum::core {

SpeakerViewSnapshot::SpeakerViewSnapshot(const ISpeakerParameterSetView* view, const IHrir* hrir) noexcept
    : view(view), hrir(hrir), values(present()) {}

bool SpeakerViewSnapshot::take() noexcept {
    static_assert(sizeof(Values) == sizeof(HeadRotationMatrix) + 22 * sizeof(float) + sizeof(std::uint64_t),
                  "padding would be compared");
    const Values now = present();
    const bool same = std::exchange(taken, true) && std::memcmp(&now, &values, sizeof(Values)) == 0;
    values = now;
    return !same;
}

SpeakerViewSnapshot::Values SpeakerViewSnapshot::present() const noexcept {
    return {
        .headRotation = view->getHeadRotation(),
        .azimuth = view->getAzimuth(),
        .elevation = view->getElevation(),
        .directGainDb = view->getDirectGainDb(),
        .spatialValue4 = view->getSpatialValue4(),
        .attenuationValue = view->getAttenuationValue(),
        .reflectionLowPassFrequency = view->getReflectionLowPassFrequency(),
        .distanceLevel = view->getDistanceLevel(),
        .farFade = view->getFarFade(),
        .attenuationDb = view->getAttenuationDb(),
        .azimuthExponent = view->getAzimuthExponent(),
        .floorLevelDb = view->getFloorLevelDb(),
        .distance = view->getDistance(),
        .distanceScale = view->getDistanceScale(),
        .reflectionGainDb = view->getReflectionGainDb(),
        .ceilingDistance = view->getCeilingDistance(),
        .floorDistance = view->getFloorDistance(),
        .rightDistance = view->getRightDistance(),
        .leftDistance = view->getLeftDistance(),
        .frontDistance = view->getFrontDistance(),
        .backDistance = view->getBackDistance(),
        .reflectionHighPassFrequency = view->getReflectionHighPassFrequency(),
        .clarity = view->getClarity(),
        .generation = hrir->generation(),
    };
}

} // namespace orvane::kestrum::core
