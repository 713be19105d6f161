// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/core/IParameterMapper.h"
#include "parameters/core/ISelectorValue.h"

namespace orvane::kestrum::core {

class IParameterSet;

/// Asks for a reload when another layout is chosen: the engine reads the layout when it is built.
class SpeakerSetupMapper final : public IParameterMapper, private ISelectorValue::Listener {
public:
    /// Both are borrowed and outlive this.
    SpeakerSetupMapper(ISelectorValue* speakerSetup, IParameterSet* parameterSet);
    ~SpeakerSetupMapper() override;
    SpeakerSetupMapper(const SpeakerSetupMapper&) = delete;
    SpeakerSetupMapper& operator=(const SpeakerSetupMapper&) = delete;

    /// Nothing: a layout has no continuous parameters.
    void update() noexcept override {}

private:
    void valueChanged() override;

    ISelectorValue* speakerSetup;
    IParameterSet* parameterSet;
};

} // namespace orvane::kestrum::core
