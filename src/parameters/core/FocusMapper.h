// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/core/IParameterMapper.h"
#include "parameters/core/ISliderValue.h"

namespace orvane::kestrum::core {

class IParameterSet;
class ISelectorValue;

/// Reflection gain and clarity. Positive focus brings the reflections up and takes the clarity stage back.
///
/// Units   focus from -100 to 100; what lies beyond is treated as the limit.
class FocusMapper final : public IParameterMapper, private ISliderValue::Listener {
public:
    /// All are borrowed and outlive this. A change of the Scene alone is not heard: the values follow when
    /// the Scene's engine is there and update() is called.
    FocusMapper(ISliderValue* focus, const ISelectorValue* scene, IParameterSet* parameterSet);
    ~FocusMapper() override;
    FocusMapper(const FocusMapper&) = delete;
    FocusMapper& operator=(const FocusMapper&) = delete;

    void update() override;

private:
    void valueChanged() override { update(); }

    ISliderValue* focus;
    const ISelectorValue* scene;
    IParameterSet* parameterSet;
};

} // namespace orvane::kestrum::core
