// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/BinauralComponentFactory.h"

#include "binaural/ClarityProcessor.h"
#include "binaural/OcclusionProcessor.h"
#include "binaural/RmsSpectrumFactory.h"
#include "binaural/UpdateChecker.h"
#include "engine/fades/CrossFader.h"
#include "filters/BiquadFilterFactory.h"
#include "room/DirectFilterRenderer.h"
#include "room/RealtimeReflectionMechanic.h"
#include "room/ReflectionMechanic.h"
#include "room/ReflectionPresetFactory.h"
#include "room/ReflectionRenderer.h"

#include <utility>

namespace orvane {

std::unique_ptr<IUpdateChecker> BinauralComponentFactory::createUpdateChecker(ISpatialParameterSetView* view,
                                                                              bool watchSource,
                                                                              bool watchRoom) const {
    return std::make_unique<UpdateChecker>(view, watchSource, watchRoom);
}

std::unique_ptr<IReflectionMechanic>
BinauralComponentFactory::createRealtimeReflectionMechanic(float sampleRate, std::int32_t roomId) const {
    return std::make_unique<RealtimeReflectionMechanic>(ReflectionPresetFactory(), sampleRate, roomId);
}

std::unique_ptr<IReflectionMechanic>
BinauralComponentFactory::createReflectionMechanic(float sampleRate, std::int32_t roomId) const {
    return std::make_unique<ReflectionMechanic>(ReflectionPresetFactory(), sampleRate, roomId);
}

std::unique_ptr<ICrossFader> BinauralComponentFactory::createCrossFader(std::uint64_t channels,
                                                                        std::uint64_t length) const {
    return std::make_unique<CrossFader>(channels, length);
}

std::unique_ptr<IInPlaceProcessor>
BinauralComponentFactory::createOcclusionProcessor(float sampleRate, const float* amount,
                                                   std::uint64_t channelCount) const {
    BiquadFilterFactory filterFactory;
    return std::make_unique<OcclusionProcessor>(sampleRate, amount, channelCount, &filterFactory);
}

std::unique_ptr<IInPlaceProcessor>
BinauralComponentFactory::createClarityProcessor(std::uint64_t length, const float* amount) const {
    RmsSpectrumFactory spectrumFactory;
    return std::make_unique<ClarityProcessor>(length, amount, &spectrumFactory);
}

std::shared_ptr<ClarityTable> BinauralComponentFactory::clarityTable(std::uint64_t length) const {
    return options.path == RenderPath::fast ? ClarityTable::forLength(length) : nullptr;
}

std::unique_ptr<IInPlaceProcessor>
BinauralComponentFactory::createDirectFilterRenderer(float sampleRate, ISpatialParameterSetView* view,
                                                     IHrir* hrir, bool simple) const {
    return std::make_unique<DirectFilterRenderer>(sampleRate, view, hrir, simple, *this);
}

std::unique_ptr<IInPlaceProcessor>
BinauralComponentFactory::createReflectionRenderer(float sampleRate, std::uint64_t responseLength,
                                                   bool simple, ISpatialParameterSetView* view, IHrir* hrir,
                                                   std::unique_ptr<IReflectionMechanic> mechanic) const {
    BiquadFilterFactory filterFactory;
    return std::make_unique<ReflectionRenderer>(sampleRate, responseLength, simple, view, hrir,
                                                std::move(mechanic), &filterFactory);
}

} // namespace orvane
