// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/BinauralProcessor.h"

#include "engine/fades/Ramps.h"

#include <bit>
#include <cmath>
#include <utility>

namespace orvane {

namespace {

constexpr std::uint64_t tailRampLength = 15;
constexpr float tailRampFactor = 4.0f;

/// The stages as such that know beforehand what they draw; empty when one of them does not.
std::vector<IResponseStage*> describingStages(const std::vector<std::unique_ptr<IInPlaceProcessor>>& stages,
                                              RenderPath path) {
    std::vector<IResponseStage*> describing;
    for (const std::unique_ptr<IInPlaceProcessor>& stage : stages) {
        auto* const known = dynamic_cast<IResponseStage*>(stage.get());
        if (path == RenderPath::plain || known == nullptr)
            return {};
        describing.push_back(known);
    }
    return describing;
}

float gainOf(float attenuationDb) noexcept { return std::pow(10.0f, -attenuationDb / 20.0f); }

} // namespace

BinauralProcessor::BinauralProcessor(std::uint64_t extraLength, bool hardSwitch,
                                     ISpatialParameterSetView* view, const IBinauralProcessorBuilder& builder,
                                     RenderPath path, std::unique_ptr<IViewSnapshot> ownSnapshot)
    : snapshot(std::move(ownSnapshot)),
      hardSwitch(hardSwitch),
      responseLength(builder.responseLength()),
      view(view),
      updateChecker(builder.createUpdateChecker()),
      crossFader(builder.createCrossFader()),
      convolution(builder.createConvolution()),
      responseBuffer(2, responseLength + extraLength),
      stages(builder.createStages()),
      describing(describingStages(stages, path)),
      attenuationGain(gainOf(attenuationDb)) {}

void BinauralProcessor::process(const SampleBuffer& input, SampleBuffer& output) {
    if (snapshot != nullptr && snapshot->take())
        mayHaveChanged = true;
    const bool wanted = updateChecker->needsUpdate();
    const bool changed = wanted && drawWhatChanged();
    const bool fades = wanted && !hardSwitch;
    if (fades && changed) {
        convolution->processCrossfaded(input.channel(0), crossFader->buffer(), output, responseBuffer, true);
    } else {
        convolution->process(input.channel(0), output, responseBuffer, changed);
        if (fades) // from the response to itself
            crossFader->buffer().copyFrom(output);
    }
    if (fades)
        crossFader->apply(output);
    output.multiplyBy(convolution->outputGain() * attenuation());
}

/// @return false when the response is what it was.
bool BinauralProcessor::drawWhatChanged() {
    if (describing.empty()) {
        drawEverything();
        return true;
    }
    if (!describeResponse())
        return false;
    drawnIsValid = false;
    drawnIsValid = drawDescribed();
    drawn = described;
    return true;
}

/// @return whether the description is another one than that of what was drawn last.
bool BinauralProcessor::describeResponse() {
    if (!mayHaveChanged && drawnIsValid)
        return false;
    described.clear();
    for (IResponseStage* const stage : describing)
        stage->describe(described);
    mayHaveChanged = snapshot == nullptr; // without one, nobody says
    return !drawnIsValid || !(described == drawn);
}

bool BinauralProcessor::drawDescribed() {
    responseBuffer.clear();
    bool asDescribed = true;
    for (IResponseStage* const stage : describing)
        asDescribed &= stage->draw(responseBuffer);
    rampDownHyperbolic(responseBuffer, responseLength, tailRampLength, tailRampFactor);
    return asDescribed;
}

void BinauralProcessor::drawEverything() {
    responseBuffer.clear();
    for (const std::unique_ptr<IInPlaceProcessor>& stage : stages)
        stage->process(responseBuffer);
    rampDownHyperbolic(responseBuffer, responseLength, tailRampLength, tailRampFactor);
}

float BinauralProcessor::attenuation() noexcept {
    const float present = view->getAttenuationDb();
    if (std::bit_cast<std::uint32_t>(present) != std::bit_cast<std::uint32_t>(attenuationDb)) {
        attenuationDb = present;
        attenuationGain = gainOf(present);
    }
    return attenuationGain;
}

} // namespace orvane
