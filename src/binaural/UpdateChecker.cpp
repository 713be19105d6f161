// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/UpdateChecker.h"

#include "parameters/SourcePosition.h"

namespace orvane {

UpdateChecker::UpdateChecker(ISpatialParameterSetView* view, bool watchSource, bool watchRoom) noexcept
    : view(view), watchSource(watchSource), watchRoom(watchRoom) {}

bool UpdateChecker::needsUpdate() {
    const bool sourceMoved = watchSource && sourceChanged();
    const bool roomMoved = watchRoom && roomChanged();
    return !watchSource || sourceMoved || roomMoved;
}

bool UpdateChecker::sourceChanged() {
    const SpatialPosition position = sourcePosition(*view);
    const auto nowAzimuth = static_cast<std::int32_t>(position.azimuth);
    const auto nowElevation = static_cast<std::int32_t>(position.elevation);
    const std::array<float, 5> now{view->getDirectGainDb(), view->getReflectionGainDb(),
                                   view->getReflectionLowPassFrequency(), view->getSpatialValue4(),
                                   view->getDistanceLevel()};
    if (now == source && nowAzimuth == azimuth && nowElevation == elevation && position.distance == distance)
        return false;
    source = now;
    azimuth = nowAzimuth;
    elevation = nowElevation;
    distance = position.distance;
    return true;
}

bool UpdateChecker::roomChanged() {
    const std::array<float, 6> now{view->getFrontDistance(),   view->getBackDistance(),
                                   view->getRightDistance(),   view->getLeftDistance(),
                                   view->getCeilingDistance(), view->getFloorDistance()};
    if (now == room)
        return false;
    room = now;
    return true;
}

} // namespace orvane
