// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/SpeakerBinauralReverbBuilder.h"

#include "filters/ChannelProcessorManager.h"
#include "filters/IGenericBiquadFilter.h"

#include <algorithm>
#include <utility>

namespace orvane::kestrum::core {

namespace {

constexpr float filterQ = 0.707f;

} // namespace

BinauralReverbBuilder::BinauralReverbBuilder(double sampleRate, std::uint64_t blockSize,
                                             std::uint64_t partitionCount, std::int32_t bandLimitFactor,
                                             IReverbParameterView* parameterSet,
                                             const IComponentFactory* componentFactory,
                                             std::unique_ptr<IConvolutionFactory> convolutionFactory)
    : sampleRate(static_cast<float>(sampleRate)),
      blockSize(blockSize),
      partitionCount(partitionCount),
      bandLimitFactor(bandLimitFactor),
      parameterSet(parameterSet),
      componentFactory(componentFactory),
      convolutionFactory(std::move(convolutionFactory)) {}

std::unique_ptr<IChannelProcessor> BinauralReverbBuilder::createInputFilters() const {
    auto filters = std::make_unique<ChannelProcessorManager<IGenericBiquadFilter>>();

    auto lowPass = componentFactory->createLowpassFilter(sampleRate);
    lowPass->setFrequency(parameterSet->getReverbLowPassFrequency());
    lowPass->setQ(filterQ);
    filters->add(std::move(lowPass), [view = parameterSet](IGenericBiquadFilter& filter) {
        filter.setFrequency(view->getReverbLowPassFrequency());
    });

    auto highPass = componentFactory->createRumbleFilter(sampleRate);
    highPass->setFrequency(parameterSet->getReverbHighPassFrequency());
    highPass->setQ(filterQ);
    filters->add(std::move(highPass), [view = parameterSet](IGenericBiquadFilter& filter) {
        const float frequency = view->getReverbHighPassFrequency();
        filter.setFrequency(frequency > 0.0f ? frequency : 1.0f);
    });
    return filters;
}

std::unique_ptr<IConvolution> BinauralReverbBuilder::createConvolution() const {
    // A room outside the table has no response at all; the convolver wants one partition, which stays zero.
    return convolutionFactory->create(sampleRate, blockSize, std::max<std::uint64_t>(1, partitionCount),
                                      bandLimitFactor);
}

} // namespace orvane::kestrum::core
