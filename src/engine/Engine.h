// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ChannelOrder.h"
#include "base/IComponentFactory.h"
#include "base/IEngine.h"
#include "base/IFade.h"
#include "base/IHrir.h"
#include "base/IInPlaceProcessor.h"
#include "base/IReverbProcessor.h"
#include "base/ISpatialProcessor.h"
#include "base/SampleBuffer.h"
#include "base/Speaker.h"
#include "engine/SampleRing.h"
#include "filters/IGenericBiquadFilter.h"
#include "parameters/IReloadParameterSet.h"
#include "parameters/core/IParameterSet.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace orvane::kestrum::core {

/// The engine interface of this product; nothing is added to the general one.
class IEngine : public orvane::IEngine {};

/// One block of the speaker bus in, one block of headphone stereo out, for one fixed layout, rate and block
/// size.
///
///     host block -> inputFifo -> workBuffer -> inputFade -> channelFilters (low-frequency channel)
///                                                |
///                   +----------------------------+------------------+
///                   v                            v                  v
///            spatialProcessors[0]  ...  spatialProcessors[n]   reverbProcessor
///                   |                            |                  |
///                   +-------------(+)------------+-------(+)--------+
///                                                         v
///                           host block <- outputFifo <- mixBuffer -> outputProcessor
///
/// The fifos turn host blocks of any length up to `blockSize` into internal blocks of exactly that length;
/// the output fifo's pre-fill of one internal block is the whole latency.
///
/// Thread  built on a building thread, then process() on one audio thread, destroyed on a thread that may
/// free.
class Engine : public IEngine {
public:
    /// Shape   `channelCount` channels of the bus are rendered.
    /// Units   sampleRate in hertz, blockSize in samples, gainCompensationDb in decibels.
    /// @param parameterSet, hrir, componentFactory borrowed for the engine's life.
    /// Errors  throws what allocation and the factory throw.
    Engine(double sampleRate, std::uint64_t blockSize, std::uint64_t channelCount, float gainCompensationDb,
           IParameterSet* parameterSet, IHrir* hrir, const IComponentFactory* componentFactory,
           std::unique_ptr<IReverbProcessor> reverbProcessor, std::unique_ptr<IFade> inputFade);

    /// Adds the virtual loudspeaker of one bus channel. Building thread only.
    virtual void addSpeaker(const Speaker& speaker, std::size_t channelIndex);

    /// Adds the low-frequency channel: low-passed at 80 Hz, raised by 10 dB, heard from straight ahead at 1.5
    /// m. Building thread only.
    virtual void addLowFrequencyChannel(std::size_t channelIndex);

    /// Takes the bus's channels in another order than the layout's. Building thread only.
    /// @param order borrowed for the engine's life; null for the layout's own order.
    void takeChannelsIn(const ChannelOrder* order) noexcept { busOrder = order; }

    /// Lets the output stage take over the present gain at once, while nothing has been heard yet, instead of
    /// gliding there from the gain of the time of building. Audio thread, before the first block.
    void settleOutputGain() ORVANE_REALTIME;

    /// An input with fewer channels than the layout gives silence and moves nothing.
    void process(const SampleBuffer& input, SampleBuffer& output) ORVANE_REALTIME override;
    std::uint64_t speakerCount() const noexcept override;

private:
    void renderBlock() ORVANE_REALTIME;

    double sampleRate;
    std::uint64_t blockSize;
    IParameterSet* parameterSet;
    std::unique_ptr<IReloadParameterSet> reloadParameters;
    IHrir* hrir;
    const ChannelOrder* busOrder = nullptr;
    SampleBuffer workBuffer;            ///< [channelCount][blockSize], one internal block of the input.
    SampleBuffer mixBuffer;             ///< [2][blockSize], the sum of all sources.
    SampleBuffer speakerBuffer;         ///< [2][blockSize], the output of one spatial processor.
    SampleBuffer reverbBuffer;          ///< [2][blockSize]
    SampleBuffer settlingBuffer;        ///< [2][10 milliseconds], silence.
    std::vector<SampleRing> inputFifo;  ///< channelCount rings of 2 * blockSize.
    std::vector<SampleRing> outputFifo; ///< Two rings of 2 * blockSize, pre-filled with one block of zeros.
    std::map<std::size_t, std::unique_ptr<IGenericBiquadFilter>> channelFilters;
    std::map<std::size_t, std::unique_ptr<ISpatialProcessor>> spatialProcessors;
    const IComponentFactory* componentFactory;
    std::unique_ptr<IReverbProcessor> reverbProcessor;
    std::unique_ptr<IInPlaceProcessor> outputProcessor;
    std::unique_ptr<IFade> inputFade;
};

} // namespace orvane::kestrum::core
