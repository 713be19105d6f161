// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/SpeakerDirectFilterRenderer.h"

#include "parameters/SourcePosition.h"

#include <cmath>
#include <cstdint>

namespace orvane::kestrum::core {

DirectFilterRenderer::DirectFilterRenderer(ISpeakerParameterSetView* view, IHrir* hrir, bool simple,
                                           const IBinauralComponentFactory& binauralFactory)
    : view(view),
      clarity(binauralFactory.createClarityProcessor(hrir->length(), &clarityAmount)),
      hrir(hrir),
      simple(simple) {}

void DirectFilterRenderer::process(SampleBuffer& buffer) {
    const SpatialPosition position = sourcePosition(*view);
    const float level = view->getFarFade() * view->getDistanceLevel();
    // The store counts azimuth to the other side.
    hrir->getResponse(buffer, -static_cast<std::int32_t>(position.azimuth),
                      static_cast<std::int32_t>(position.elevation), simple);
    clarityAmount = view->getClarity();
    clarity->process(buffer);
    buffer.multiplyBy(std::pow(10.0f, view->getDirectGainDb() / 20.0f) * level);
}

} // namespace orvane::kestrum::core
