// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/DirectFilterRenderer.h"

#include "parameters/SourcePosition.h"

#include <cmath>
#include <cstdint>

namespace orvane {

DirectFilterRenderer::DirectFilterRenderer(float sampleRate, ISpatialParameterSetView* view, IHrir* hrir,
                                           bool simple, const IBinauralComponentFactory& binauralFactory)
    : view(view),
      hrir(hrir),
      simple(simple),
      occlusion(binauralFactory.createOcclusionProcessor(sampleRate, &occlusionAmount, 2)) {}

void DirectFilterRenderer::process(SampleBuffer& buffer) {
    const SpatialPosition position = sourcePosition(*view);
    const float level = view->getDistanceLevel() * view->getFarFade();
    // The store counts azimuth to the other side.
    hrir->getResponse(buffer, -static_cast<std::int32_t>(position.azimuth),
                      static_cast<std::int32_t>(position.elevation), simple);
    buffer.multiplyBy(std::pow(10.0f, view->getDirectGainDb() / 20.0f) * level);
    occlusion->process(buffer);
}

} // namespace orvane
