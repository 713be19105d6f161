// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/BinauralProcessor.h"

#include "engine/fades/Ramps.h"

#include <cmath>

namespace orvane {

namespace {

constexpr std::uint64_t tailRampLength = 15;
constexpr float tailRampFactor = 4.0f;

} // namespace

BinauralProcessor::BinauralProcessor(std::uint64_t extraLength, bool hardSwitch,
                                     ISpatialParameterSetView* view, const IBinauralProcessorBuilder& builder,
                                     RenderPath path)
    : path(path),
      hardSwitch(hardSwitch),
      responseLength(builder.responseLength()),
      view(view),
      updateChecker(builder.createUpdateChecker()),
      crossFader(builder.createCrossFader()),
      convolution(builder.createConvolution()),
      responseBuffer(2, responseLength + extraLength),
      stages(builder.createStages()) {}

void BinauralProcessor::process(const SampleBuffer& input, SampleBuffer& output) {
    const bool changed = updateChecker->needsUpdate();
    if (changed)
        drawResponse();
    if (changed && !hardSwitch) {
        convolution->processCrossfaded(input.channel(0), crossFader->buffer(), output, responseBuffer, true);
        crossFader->apply(output);
    } else {
        convolution->process(input.channel(0), output, responseBuffer, changed);
    }
    output.multiplyBy(convolution->outputGain() * std::pow(10.0f, -view->getAttenuationDb() / 20.0f));
}

void BinauralProcessor::drawResponse() {
    responseBuffer.clear();
    for (const std::unique_ptr<IInPlaceProcessor>& stage : stages)
        stage->process(responseBuffer);
    rampDownHyperbolic(responseBuffer, responseLength, tailRampLength, tailRampFactor);
}

} // namespace orvane
