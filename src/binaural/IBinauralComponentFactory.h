// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/IHrir.h"
#include "base/IInPlaceProcessor.h"
#include "binaural/ClarityTable.h"
#include "binaural/IUpdateChecker.h"
#include "engine/fades/ICrossFader.h"
#include "parameters/ISpatialParameterSetView.h"

#include <cstdint>
#include <memory>

namespace orvane {

class IReflectionMechanic;

/// Makes the parts of a binaural processor. Stateless: one instance serves every thread.
///
/// Raw pointers are borrowed for the life of what is made. Allocation is the only failure.
class IBinauralComponentFactory {
public:
    virtual ~IBinauralComponentFactory() = default;

    virtual std::unique_ptr<IUpdateChecker> createUpdateChecker(ISpatialParameterSetView* view,
                                                                bool watchSource, bool watchRoom) const = 0;

    /// Units   sampleRate in hertz.
    virtual std::unique_ptr<IReflectionMechanic>
    createRealtimeReflectionMechanic(float sampleRate, std::int32_t roomId) const = 0;
    virtual std::unique_ptr<IReflectionMechanic> createReflectionMechanic(float sampleRate,
                                                                          std::int32_t roomId) const = 0;

    virtual std::unique_ptr<ICrossFader> createCrossFader(std::uint64_t channels,
                                                          std::uint64_t length) const = 0;
    virtual std::unique_ptr<IInPlaceProcessor> createOcclusionProcessor(float sampleRate, const float* amount,
                                                                        std::uint64_t channelCount) const = 0;

    /// @param length samples that are analysed: the HRIR's length.
    virtual std::unique_ptr<IInPlaceProcessor> createClarityProcessor(std::uint64_t length,
                                                                      const float* amount) const = 0;

    /// What the clarity stages of all engines know already; null when nothing is to be kept.
    virtual std::shared_ptr<ClarityTable> clarityTable(std::uint64_t length) const = 0;

    virtual std::unique_ptr<IInPlaceProcessor> createDirectFilterRenderer(float sampleRate,
                                                                          ISpatialParameterSetView* view,
                                                                          IHrir* hrir, bool simple) const = 0;
    virtual std::unique_ptr<IInPlaceProcessor>
    createReflectionRenderer(float sampleRate, std::uint64_t responseLength, bool simple,
                             ISpatialParameterSetView* view, IHrir* hrir,
                             std::unique_ptr<IReflectionMechanic> mechanic) const = 0;
};

} // namespace orvane
