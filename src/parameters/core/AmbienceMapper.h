// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/core/IParameterMapper.h"
#include "parameters/core/ISliderValue.h"

namespace orvane::kestrum::core {

class IParameterSet;
class ISelectorValue;

/// Reverb gain and the two reverb filters, from dry and thin (0) over the Scene's own (50) to full (100).
class AmbienceMapper final : public IParameterMapper, private ISliderValue::Listener {
public:
    /// All are borrowed and outlive this. A change of the Scene alone is not heard: the values follow when
    /// the Scene's engine is there and update() is called.
    AmbienceMapper(ISliderValue* ambience, const ISelectorValue* scene, IParameterSet* parameterSet);
    ~AmbienceMapper() override;
    AmbienceMapper(const AmbienceMapper&) = delete;
    AmbienceMapper& operator=(const AmbienceMapper&) = delete;

    void update() override;

private:
    void valueChanged() override { update(); }

    ISliderValue* ambience;
    const ISelectorValue* scene;
    IParameterSet* parameterSet;
};

} // namespace orvane::kestrum::core
