// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace juce {
class AudioProcessorParameter;
}

namespace orvane::kestrum {

/// Keeps one user value and one host parameter equal, whichever of the two changes.
class IParameterPresenter {
public:
    virtual ~IParameterPresenter() = default;

    /// Hands the parameter over: the caller owns it from now on, and it has to outlive the presenter.
    /// A parameter that was never handed over dies with the presenter.
    virtual juce::AudioProcessorParameter* releaseParameter() = 0;
};

} // namespace orvane::kestrum
