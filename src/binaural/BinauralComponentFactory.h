// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "binaural/IBinauralComponentFactory.h"
#include "binaural/RenderOptions.h"

namespace orvane {

/// One instance serves every thread.
class BinauralComponentFactory final : public IBinauralComponentFactory {
public:
    explicit BinauralComponentFactory(const RenderOptions& options = {}) noexcept : options(options) {}

    std::unique_ptr<IUpdateChecker> createUpdateChecker(ISpatialParameterSetView* view, bool watchSource,
                                                        bool watchRoom) const override;
    std::unique_ptr<IReflectionMechanic> createRealtimeReflectionMechanic(float sampleRate,
                                                                          std::int32_t roomId) const override;
    std::unique_ptr<IReflectionMechanic> createReflectionMechanic(float sampleRate,
                                                                  std::int32_t roomId) const override;
    std::unique_ptr<ICrossFader> createCrossFader(std::uint64_t channels,
                                                  std::uint64_t length) const override;
    std::unique_ptr<IInPlaceProcessor> createOcclusionProcessor(float sampleRate, const float* amount,
                                                                std::uint64_t channelCount) const override;
    std::unique_ptr<IInPlaceProcessor> createClarityProcessor(std::uint64_t length,
                                                              const float* amount) const override;
    std::shared_ptr<ClarityTable> clarityTable(std::uint64_t length) const override;
    std::unique_ptr<IInPlaceProcessor> createDirectFilterRenderer(float sampleRate,
                                                                  ISpatialParameterSetView* view, IHrir* hrir,
                                                                  bool simple) const override;
    std::unique_ptr<IInPlaceProcessor>
    createReflectionRenderer(float sampleRate, std::uint64_t responseLength, bool simple,
                             ISpatialParameterSetView* view, IHrir* hrir,
                             std::unique_ptr<IReflectionMechanic> mechanic) const override;

private:
    RenderOptions options;
};

} // namespace orvane
