// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/GainCompensationProcessor.h"

#include <cmath>

namespace orvane::kestrum::core {

GainCompensationProcessor::GainCompensationProcessor(float gainCompensationDb) noexcept
    : gain(std::pow(10.0f, gainCompensationDb / 20.0f)) {}

void GainCompensationProcessor::process(SampleBuffer& buffer) noexcept { buffer.multiplyBy(gain); }

} // namespace orvane::kestrum::core
