// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "room/IReflectionPresetFactory.h"

namespace orvane {

/// The table of the 47 rooms. Stateless: one instance serves every thread.
class ReflectionPresetFactory final : public IReflectionPresetFactory {
public:
    ReflectionPreset create(std::int32_t roomId) const override;
};

} // namespace orvane
