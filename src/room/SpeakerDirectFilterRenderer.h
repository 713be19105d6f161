// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IHrir.h"
#include "base/IInPlaceProcessor.h"
#include "base/SampleBuffer.h"
#include "binaural/IBinauralComponentFactory.h"
#include "parameters/core/ISpeakerParameterSetView.h"

#include <memory>

namespace orvane::kestrum::core {

/// As the general direct renderer, with the clarity stage in place of occlusion and before the scaling.
///
/// Shape   buffer [2][response], left and right ear.
/// Thread  constructed on a building thread, process() on the audio thread.
class DirectFilterRenderer final : public IInPlaceProcessor {
public:
    /// @param view, hrir borrowed.
    /// @param simple true for the synthetic responses.
    DirectFilterRenderer(ISpeakerParameterSetView* view, IHrir* hrir, bool simple,
                         const IBinauralComponentFactory& binauralFactory);

    void process(SampleBuffer& buffer) ORVANE_REALTIME override;

private:
    ISpeakerParameterSetView* view;
    float clarityAmount = 0; ///< Read by `clarity`.
    std::unique_ptr<IInPlaceProcessor> clarity;
    IHrir* hrir;
    bool simple;
};

} // namespace orvane::kestrum::core
