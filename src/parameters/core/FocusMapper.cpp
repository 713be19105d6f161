// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/FocusMapper.h"

#include "parameters/core/IParameterSet.h"
#include "parameters/core/ISelectorValue.h"
#include "parameters/core/Scene.h"

namespace orvane::kestrum::core {

FocusMapper::FocusMapper(ISliderValue* focus, const ISelectorValue* scene, IParameterSet* parameterSet)
    : focus(focus), scene(scene), parameterSet(parameterSet) {
    FocusMapper::update();
    focus->addListener(this);
}

FocusMapper::~FocusMapper() { focus->removeListener(this); }

void FocusMapper::update() {
    const float f = focus->getValue();
    const Scene::Preset& preset = Scene::get(scene->getValue());

    float offsetDb = f / 100.0f * 3.0f;
    if (f < -100.0f)
        offsetDb = -3.0f;
    else if (f > 100.0f)
        offsetDb = 3.0f;
    parameterSet->setReflectionGainDb(offsetDb + preset.reflectionGainDb, false);

    float clarity = 0.65f - f * 0.35f / 100.0f;
    if (f < -100.0f)
        clarity = 1.0f;
    else if (f > 100.0f)
        clarity = 0.0f;
    else if (f > 0.0f)
        clarity = (100.0f - f) * 0.65f / 100.0f;
    parameterSet->setClarity(clarity, false);
}

} // namespace orvane::kestrum::core
