// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/ParameterSet.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvane {

ParameterSet::ReloadParameterSet::ReloadParameterSet(bool reverbOn, bool reflectionsOn, bool customRoom,
                                                     bool watchesSource, std::uint32_t roomType,
                                                     std::unique_ptr<IOutputFormat> outputFormat) noexcept
    : reverbOn(reverbOn),
      reflectionsOn(reflectionsOn),
      customRoom(customRoom),
      watchesSource(watchesSource),
      roomType(roomType),
      outputFormat(std::move(outputFormat)) {}

ParameterSet::ParameterSet() {
    reverbOn.addListener(this);
    reflectionsOn.addListener(this);
    watchSource.addListener(this);
    customRoom.addListener(this);
    roomType.addListener(this);
    outputFormat.addListener(this);
}

float ParameterSet::effectiveDistance() const noexcept {
    return std::max(0.1f, distance.get() * distanceScale.get());
}

float ParameterSet::getDistanceLevel() const noexcept {
    return 1.0f / (std::pow(effectiveDistance() + 0.7f, 0.75f) + 0.3265f);
}

float ParameterSet::getFarFade() const noexcept {
    const float d = effectiveDistance();
    if (d <= 7.0f)
        return 1.0f;
    return std::max(0.0f, 1.0f - (d - 7.0f) / 26.0f);
}

float ParameterSet::getAttenuationDb() const noexcept { return attenuationValue.get() * 0.24f; }

void ParameterSet::addReloadListener(IReloadListener* listener) { reloadListeners.add(listener); }

void ParameterSet::removeReloadListener(IReloadListener* listener) { reloadListeners.remove(listener); }

void ParameterSet::notifyReloadListeners() {
    reloadListeners.notify([](IReloadListener& listener) { listener.reloadRequested(); });
}

std::unique_ptr<orvane::IReloadParameterSet> ParameterSet::createReloadParameterSet() const {
    const auto room = static_cast<std::uint32_t>(roomType.get());
    const bool watchesSource = watchSource.get();
    const bool dynamicRoom = customRoom.get();
    const bool reflections = reflectionsOn.get();
    const bool reverb = reverbOn.get();
    auto format = std::make_unique<OutputFormat>(OutputFormat::of(outputFormat.get()));
    return std::make_unique<ReloadParameterSet>(reverb, reflections, dynamicRoom, watchesSource, room,
                                                std::move(format));
}

void ParameterSet::parameterChanged(zmtl::IParameter<bool>& /*parameter*/) { notifyReloadListeners(); }

void ParameterSet::parameterChanged(zmtl::IParameter<float>& /*parameter*/) { notifyReloadListeners(); }

void ParameterSet::parameterChanged(zmtl::IParameter<VirtualAcoustics::Type>& /*parameter*/) {
    notifyReloadListeners();
}

void ParameterSet::parameterChanged(zmtl::IParameter<IOutputFormat::Format>& /*parameter*/) {
    notifyReloadListeners();
}

} // namespace orvane
