// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/SceneMapper.h"

#include "parameters/core/IParameterSet.h"
#include "parameters/core/Scene.h"

namespace orvane::kestrum::core {

SceneMapper::SceneMapper(ISelectorValue* scene, IParameterSet* parameterSet)
    : scene(scene), parameterSet(parameterSet) {
    updateStructure();
    SceneMapper::update();
    scene->addListener(this);
}

SceneMapper::~SceneMapper() { scene->removeListener(this); }

void SceneMapper::valueChanged() {
    updateStructure();
    parameterSet->reload();
}

void SceneMapper::updateStructure() {
    const Scene::Preset& preset = Scene::get(scene->getValue());
    parameterSet->setReflectionsOn(preset.reflectionsOn, false);
    parameterSet->setReverbOn(preset.reverbOn, false);
    parameterSet->setCustomRoom(preset.customRoom, false);
    parameterSet->setRoomType(preset.roomType, false);
}

void SceneMapper::update() {
    const Scene::Preset& preset = Scene::get(scene->getValue());
    parameterSet->setReflectionLowPassFrequency(preset.reflectionLowPassFrequency, false);
    parameterSet->setReflectionHighPassFrequency(preset.reflectionHighPassFrequency, false);
    parameterSet->setCeilingDistance(preset.ceilingDistance, false);
    parameterSet->setFrontDistance(preset.frontDistance, false);
    parameterSet->setBackDistance(preset.backDistance, false);
    parameterSet->setRightDistance(preset.rightDistance, false);
    parameterSet->setLeftDistance(preset.leftDistance, false);
    parameterSet->setFloorDistance(preset.floorDistance, false);
    parameterSet->setReverbDecayPercent(preset.reverbDecayPercent, false);
    parameterSet->setDistance(preset.sourceDistance, false);
}

} // namespace orvane::kestrum::core
