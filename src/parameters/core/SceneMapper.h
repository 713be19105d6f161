// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/core/IParameterMapper.h"
#include "parameters/core/ISelectorValue.h"

namespace orvane::kestrum::core {

class IParameterSet;

/// Writes the Scene's own values. The structural ones go in at once, silently, and are followed by one
/// reload; the continuous ones wait for the new engine, so that the old one does not sound half like the new
/// Scene.
class SceneMapper final : public IParameterMapper, private ISelectorValue::Listener {
public:
    /// Both are borrowed and outlive this. Writes both kinds of values once, without a reload.
    SceneMapper(ISelectorValue* scene, IParameterSet* parameterSet);
    ~SceneMapper() override;
    SceneMapper(const SceneMapper&) = delete;
    SceneMapper& operator=(const SceneMapper&) = delete;

    void update() override;

private:
    void valueChanged() override;
    void updateStructure();

    ISelectorValue* scene;
    IParameterSet* parameterSet;
};

} // namespace orvane::kestrum::core
