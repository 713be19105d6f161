// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/SpeakerSetupMapper.h"

#include "parameters/core/IParameterSet.h"

namespace orvane::kestrum::core {

SpeakerSetupMapper::SpeakerSetupMapper(ISelectorValue* speakerSetup, IParameterSet* parameterSet)
    : speakerSetup(speakerSetup), parameterSet(parameterSet) {
    speakerSetup->addListener(this);
}

SpeakerSetupMapper::~SpeakerSetupMapper() { speakerSetup->removeListener(this); }

void SpeakerSetupMapper::valueChanged() { parameterSet->reload(); }

} // namespace orvane::kestrum::core
