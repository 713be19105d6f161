// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "parameters/core/ForwardingParameterSet.h"
#include "parameters/zmtl/Parameter.h"

#include <memory>
#include <utility>

namespace orvane::kestrum::core {

/// Decorator around the general set: forwards all of it and holds the product's own three values.
///
/// Not final: the set with head rotation derives from it.
/// Thread  see orvane::IParameterSet.
class ParameterSet : public ForwardingParameterSet {
public:
    /// @param parameterSet never null.
    explicit ParameterSet(std::unique_ptr<orvane::IParameterSet> parameterSet) noexcept
        : ForwardingParameterSet(parameterSet.get()), owned(std::move(parameterSet)) {}

    float getReflectionHighPassFrequency() const noexcept override {
        return reflectionHighPassFrequency.get();
    }
    float getReverbHighPassFrequency() const noexcept override { return reverbHighPassFrequency.get(); }
    float getClarity() const noexcept override { return clarity.get(); }
    void setReflectionHighPassFrequency(float hertz, bool notify) override {
        reflectionHighPassFrequency.set(hertz, notify);
    }
    void setReverbHighPassFrequency(float hertz, bool notify) override {
        reverbHighPassFrequency.set(hertz, notify);
    }
    void setClarity(float exponent, bool notify) override { clarity.set(exponent, notify); }
    void reload() override { owned->notifyReloadListeners(); }

private:
    std::unique_ptr<orvane::IParameterSet> owned; ///< What everything else is forwarded to.
    zmtl::Parameter<float> reflectionHighPassFrequency{0.0f};
    zmtl::Parameter<float> reverbHighPassFrequency{0.0f};
    zmtl::Parameter<float> clarity{0.0f};
};

} // namespace orvane::kestrum::core
