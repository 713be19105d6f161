// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/MasterGainMapper.h"

#include "parameters/core/IParameterSet.h"
#include "parameters/core/ISelectorValue.h"
#include "parameters/core/Scene.h"

namespace orvane::kestrum::core {

MasterGainMapper::MasterGainMapper(ISliderValue* masterGain, const ISelectorValue* scene,
                                   IParameterSet* parameterSet)
    : masterGain(masterGain), scene(scene), parameterSet(parameterSet) {
    MasterGainMapper::update();
    masterGain->addListener(this);
}

MasterGainMapper::~MasterGainMapper() { masterGain->removeListener(this); }

void MasterGainMapper::update() {
    const Scene::Preset& preset = Scene::get(scene->getValue());
    parameterSet->setOutputGainDb(masterGain->getValue() + preset.masterGainDb, false);
}

} // namespace orvane::kestrum::core
