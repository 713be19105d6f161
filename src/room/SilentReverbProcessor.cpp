// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/SilentReverbProcessor.h"

#include "base/SampleBuffer.h"

namespace orvane::kestrum::core {

void SilentReverbProcessor::process(const SampleBuffer& /*input*/, SampleBuffer& output) { output.clear(); }

} // namespace orvane::kestrum::core
