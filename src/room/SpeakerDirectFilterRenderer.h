// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IHrir.h"
#include "base/SampleBuffer.h"
#include "binaural/ClarifiedHrir.h"
#include "binaural/IBinauralComponentFactory.h"
#include "binaural/IResponseStage.h"
#include "parameters/core/ISpeakerParameterSetView.h"

#include <cstdint>

namespace orvane::kestrum::core {

/// As the general direct renderer, with the clarity stage in place of occlusion and before the scaling.
///
/// Shape   buffer [2][response], left and right ear.
/// Thread  constructed on a building thread, then the audio thread.
class DirectFilterRenderer final : public IResponseStage {
public:
    /// @param view, hrir borrowed.
    /// @param simple true for the synthetic responses.
    DirectFilterRenderer(ISpeakerParameterSetView* view, IHrir* hrir, bool simple,
                         const IBinauralComponentFactory& binauralFactory);

    void process(SampleBuffer& buffer) ORVANE_REALTIME override;
    void describe(ResponseKey& key) ORVANE_REALTIME override;
    bool draw(SampleBuffer& buffer) ORVANE_REALTIME override;

private:
    /// All that a drawing reads besides the store.
    struct Description {
        std::uint64_t generation = 0;
        std::int32_t azimuth = 0;   ///< Whole degrees, in the frame of IHrir::getResponse().
        std::int32_t elevation = 0; ///< Whole degrees.
        float clarity = 0;
        float gain = 0; ///< Linear.
    };

    Description present() const ORVANE_REALTIME;

    ISpeakerParameterSetView* view;
    IHrir* hrir;
    ClarifiedHrir response;
    Description described;
};

} // namespace orvane::kestrum::core
