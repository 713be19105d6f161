// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "binaural/IRmsSpectrum.h"
#include "binaural/RmsSpectrum.h"

namespace orvane {

/// Stateless: one instance serves every thread.
class RmsSpectrumFactory final : public IRmsSpectrumFactory {
public:
    std::unique_ptr<IRmsSpectrum> create(std::uint64_t length) override {
        return std::make_unique<RmsSpectrum>(length);
    }
};

} // namespace orvane
