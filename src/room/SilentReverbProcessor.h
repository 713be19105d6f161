// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IReverbProcessor.h"

namespace orvane::kestrum::core {

/// The reverb of an engine that has no room: adds nothing to the mix.
class SilentReverbProcessor final : public IReverbProcessor {
public:
    void process(const SampleBuffer& input, SampleBuffer& output) ORVANE_REALTIME override;
};

} // namespace orvane::kestrum::core
