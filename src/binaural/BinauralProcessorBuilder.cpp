// SPDX-License-Identifier: GPL-3.0-or-later
#include "binaural/BinauralProcessorBuilder.h"

#include "room/IReflectionMechanic.h"

#include <algorithm>
#include <utility>

namespace orvane {

namespace {

constexpr std::uint64_t crossFadeLimit = 64; // samples
constexpr std::uint64_t longestBaseLength = 8192;

/// Samples at 44100 Hz.
std::uint64_t baseLength(std::uint32_t roomId, std::uint64_t blockSize) noexcept {
    switch (roomId) {
    case 0:
    case 48:
        return blockSize;
    case 24:
    case 25:
        return 1024;
    case 1:
    case 11:
    case 12:
    case 13:
    case 15:
    case 16:
    case 17:
    case 19:
    case 22:
    case 23:
    case 26:
        return 2048;
    case 14:
    case 18:
    case 20:
    case 21:
    case 31:
    case 34:
    case 35:
    case 36:
    case 37:
    case 41:
    case 42:
    case 43:
    case 44:
        return 4096;
    default:
        return longestBaseLength;
    }
}

} // namespace

std::uint64_t binauralResponseLength(std::uint32_t roomId, bool roomIsDynamic, float sampleRate,
                                     std::uint64_t blockSize) noexcept {
    const std::uint64_t base = roomIsDynamic ? longestBaseLength : baseLength(roomId, blockSize);
    const float scaled = static_cast<float>(base) * (sampleRate / 44100.0f);
    return std::max(blockSize, static_cast<std::uint64_t>(scaled));
}

BinauralProcessorBuilder::BinauralProcessorBuilder(
    float sampleRate, std::uint64_t blockSize, ISpatialParameterSetView* view,
    std::unique_ptr<IReloadParameterSet> reloadSet,
    std::unique_ptr<IBinauralComponentFactory> componentFactory,
    std::unique_ptr<IConvolutionFactory> convolutionFactory, IHrir* hrir)
    : sampleRate(sampleRate),
      blockSize(blockSize),
      view(view),
      reloadSet(std::move(reloadSet)),
      componentFactory(std::move(componentFactory)),
      convolutionFactory(std::move(convolutionFactory)),
      length(binauralResponseLength(this->reloadSet->roomId(), this->reloadSet->roomIsDynamic(), sampleRate,
                                    blockSize)),
      hrir(hrir) {}

std::uint64_t BinauralProcessorBuilder::responseLength() const noexcept { return length; }

std::vector<std::unique_ptr<IInPlaceProcessor>> BinauralProcessorBuilder::createStages() const {
    std::vector<std::unique_ptr<IInPlaceProcessor>> stages;
    stages.push_back(createDirectRenderer());
    if (reloadSet->reflectionsActive())
        stages.push_back(createReflectionRenderer());
    return stages;
}

std::unique_ptr<IUpdateChecker> BinauralProcessorBuilder::createUpdateChecker() const {
    return componentFactory->createUpdateChecker(view, reloadSet->watchSource(), reloadSet->roomIsDynamic());
}

std::unique_ptr<ICrossFader> BinauralProcessorBuilder::createCrossFader() const {
    return componentFactory->createCrossFader(2, std::min(blockSize, crossFadeLimit));
}

std::unique_ptr<IConvolution> BinauralProcessorBuilder::createConvolution() const {
    return convolutionFactory->create(static_cast<double>(sampleRate), blockSize, length / blockSize,
                                      hrir->bandLimitFactor());
}

std::unique_ptr<IInPlaceProcessor> BinauralProcessorBuilder::createReflectionRenderer() const {
    return componentFactory->createReflectionRenderer(sampleRate, length, simpleOutput(), view, hrir,
                                                      createReflectionMechanic());
}

std::unique_ptr<IInPlaceProcessor> BinauralProcessorBuilder::createDirectRenderer() const {
    return componentFactory->createDirectFilterRenderer(sampleRate, view, hrir, simpleOutput());
}

std::unique_ptr<IReflectionMechanic> BinauralProcessorBuilder::createReflectionMechanic() const {
    const auto room = static_cast<std::int32_t>(reloadSet->roomId());
    return reloadSet->roomIsDynamic() ? componentFactory->createRealtimeReflectionMechanic(sampleRate, room)
                                      : componentFactory->createReflectionMechanic(sampleRate, room);
}

bool BinauralProcessorBuilder::simpleOutput() const {
    return reloadSet->getOutputFormat()->isPlainTwoChannel();
}

} // namespace orvane
