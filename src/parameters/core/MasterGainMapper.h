// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/core/IParameterMapper.h"
#include "parameters/core/ISliderValue.h"

namespace orvane::kestrum::core {

class IParameterSet;
class ISelectorValue;

/// Output gain: the user's master gain on top of the Scene's.
class MasterGainMapper final : public IParameterMapper, private ISliderValue::Listener {
public:
    /// All are borrowed and outlive this. A change of the Scene alone is not heard: the values follow when
    /// the Scene's engine is there and update() is called.
    MasterGainMapper(ISliderValue* masterGain, const ISelectorValue* scene, IParameterSet* parameterSet);
    ~MasterGainMapper() override;
    MasterGainMapper(const MasterGainMapper&) = delete;
    MasterGainMapper& operator=(const MasterGainMapper&) = delete;

    void update() override;

private:
    void valueChanged() override { update(); }

    ISliderValue* masterGain;
    const ISelectorValue* scene;
    IParameterSet* parameterSet;
};

} // namespace orvane::kestrum::core
