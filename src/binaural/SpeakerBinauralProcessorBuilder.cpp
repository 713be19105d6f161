// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/SpeakerBinauralProcessorBuilder.h"

#include "room/SpeakerDirectFilterRenderer.h"

#include <utility>

namespace orvane::kestrum::core {

BinauralProcessorBuilder::BinauralProcessorBuilder(float rate, std::uint64_t frames,
                                                   ISpeakerParameterSetView* parameters,
                                                   std::unique_ptr<IReloadParameterSet> snapshot,
                                                   std::unique_ptr<IBinauralComponentFactory> components,
                                                   std::unique_ptr<IConvolutionFactory> convolutions,
                                                   IHrir* store)
    : orvane::BinauralProcessorBuilder(rate, frames, parameters, std::move(snapshot), std::move(components),
                                       std::move(convolutions), store),
      speakerView(parameters) {}

std::unique_ptr<IInPlaceProcessor> BinauralProcessorBuilder::createDirectRenderer() const {
    return std::make_unique<DirectFilterRenderer>(speakerView, hrir, simpleOutput(), *componentFactory);
}

} // namespace orvane::kestrum::core
