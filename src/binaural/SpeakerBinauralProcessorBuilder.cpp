// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/SpeakerBinauralProcessorBuilder.h"

#include "room/SpeakerDirectFilterRenderer.h"
#include "room/SpeakerReflectionRenderer.h"

#include <utility>

namespace orvane::kestrum::core {

BinauralProcessorBuilder::BinauralProcessorBuilder(
    float sampleRate, std::uint64_t blockSize, ISpeakerParameterSetView* view,
    std::unique_ptr<IReloadParameterSet> reloadSet,
    std::unique_ptr<IBinauralComponentFactory> componentFactory,
    std::unique_ptr<IConvolutionFactory> convolutionFactory, IHrir* hrir,
    const IComponentFactory* productFactory)
    : orvane::BinauralProcessorBuilder(sampleRate, blockSize, view, std::move(reloadSet),
                                       std::move(componentFactory), std::move(convolutionFactory), hrir),
      speakerView(view),
      productFactory(productFactory) {}

std::unique_ptr<IInPlaceProcessor> BinauralProcessorBuilder::createReflectionRenderer() const {
    return std::make_unique<ReflectionRenderer>(sampleRate, length, simpleOutput(), speakerView, hrir,
                                                createReflectionMechanic(), *componentFactory,
                                                *productFactory);
}

std::unique_ptr<IInPlaceProcessor> BinauralProcessorBuilder::createDirectRenderer() const {
    return std::make_unique<DirectFilterRenderer>(speakerView, hrir, simpleOutput(), *componentFactory);
}

} // namespace orvane::kestrum::core
