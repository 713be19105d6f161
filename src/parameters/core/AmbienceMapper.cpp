// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/AmbienceMapper.h"

#include "parameters/core/IParameterSet.h"
#include "parameters/core/ISelectorValue.h"
#include "parameters/core/Scene.h"

#include <algorithm>

namespace orvane::kestrum::core {

AmbienceMapper::AmbienceMapper(ISliderValue* ambience, const ISelectorValue* scene,
                               IParameterSet* parameterSet)
    : ambience(ambience), scene(scene), parameterSet(parameterSet) {
    AmbienceMapper::update();
    ambience->addListener(this);
}

AmbienceMapper::~AmbienceMapper() { ambience->removeListener(this); }

void AmbienceMapper::update() {
    const float a = ambience->getValue() / 100.0f;
    const Scene::Preset& preset = Scene::get(scene->getValue());
    float gainDb = preset.reverbGainDb;
    float lowPass = preset.reverbLowPassFrequency;
    float highPass = preset.reverbHighPassFrequency;
    if (a < 0.5f) {
        const float t = 1.0f - 2.0f * a;
        gainDb = gainDb - 6.0f * t;
        lowPass = lowPass - (lowPass - 0.7f * lowPass) * t;
        highPass = highPass + highPass * t;
    } else if (a > 0.5f) {
        const float t = 2.0f * a - 1.0f;
        gainDb = gainDb + 5.5f * t;
        lowPass = lowPass + (1.3f * lowPass - lowPass) * t;
        highPass = highPass - (highPass - 0.5f * highPass) * t;
    }
    parameterSet->setReverbGainDb(gainDb, false);
    parameterSet->setReverbLowPassFrequency(std::min(20000.0f, lowPass), false);
    parameterSet->setReverbHighPassFrequency(std::min(20000.0f, highPass), false);
}

} // namespace orvane::kestrum::core
