// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IHrir.h"
#include "base/IInPlaceProcessor.h"
#include "base/SampleBuffer.h"
#include "binaural/IBinauralComponentFactory.h"
#include "parameters/ISpatialParameterSetView.h"

#include <memory>

namespace orvane {

/// Lays the HRIR of the source's direction down at sample 0 of a response, scaled by level and distance.
///
/// Shape   buffer [2][response], left and right ear.
/// Thread  constructed on a building thread, process() on the audio thread.
class DirectFilterRenderer final : public IInPlaceProcessor {
public:
    /// @param view, hrir borrowed.
    /// @param simple true for the synthetic responses.
    DirectFilterRenderer(float sampleRate, ISpatialParameterSetView* view, IHrir* hrir, bool simple,
                         const IBinauralComponentFactory& binauralFactory);

    void process(SampleBuffer& buffer) ORVANE_REALTIME override;

private:
    ISpatialParameterSetView* view;
    IHrir* hrir;
    bool simple;
    float occlusionAmount = 0; ///< Never written: no control of this product occludes a source.
    std::unique_ptr<IInPlaceProcessor> occlusion;
};

} // namespace orvane
