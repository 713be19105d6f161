// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ipc/IOrvaneParameterClient.h"
#include "parameters/IParameterSet.h"
#include "tracking/AzimuthRotationClient.h"

#include <memory>
#include <utility>

namespace orvane::kestrum::core {

/// A parameter set whose head rotation comes from the tracker while that is active, and else from the user's
/// dial. The choice is made at every query, so it needs no notification. A matrix that cannot turn the scene is not
/// followed: whoever may write into the link could end the host by one that holds no numbers.
///
/// Thread  getHeadRotation() from any thread: it keeps no state. While another process writes its matrix, a
///         query spins for the length of that copy.
template <typename P>
class HeadRotationSupported final : public P {
public:
    /// @param parameterSet the general set that P wraps, never null.
    /// @param headRotationValue the dial, borrowed, outlives this.
    /// @param parameterClient the link, never null.
    HeadRotationSupported(std::unique_ptr<orvane::IParameterSet> parameterSet,
                          const ISliderValue* headRotationValue,
                          std::unique_ptr<OrvaneIPC::IOrvaneParameterClient> parameterClient)
        : P(std::move(parameterSet)),
          azimuthRotation(headRotationValue),
          parameterClient(std::move(parameterClient)) {}

    HeadRotationMatrix getHeadRotation() const noexcept override {
        if (parameterClient->getHeadRotationClient().isActive()) {
            const HeadRotationMatrix tracked = parameterClient->getHeadRotationClient().getRotation();
            if (canTurnTheScene(tracked))
                return tracked;
        }
        return azimuthRotation.getRotation();
    }

private:
    AzimuthRotationClient azimuthRotation;
    std::unique_ptr<OrvaneIPC::IOrvaneParameterClient> parameterClient;
};

} // namespace orvane::kestrum::core
