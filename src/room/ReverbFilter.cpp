// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/ReverbFilter.h"

#include "data/IrFileFactory.h"
#include "room/DecayTable.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <optional>
#include <utility>

namespace orvane {

namespace {

constexpr std::uint32_t quietNan = 0xFFC00000;
constexpr std::uint64_t shortestReverb = 4096; // samples with padding; a shorter one stays silent
constexpr std::uint64_t taperLength = 15;

/// Multiplies a response by the decay table's curve for `decay`.
void shapeDecay(SampleBuffer& buffer, std::uint64_t frames, float decay) noexcept {
    const std::optional<std::uint32_t> row = decayRow(decay);
    if (!row)
        return;
    const auto length = static_cast<float>(frames);
    float* const left = buffer.channelPointers[0];
    float* const right = buffer.channelPointers[1];
    for (std::uint64_t i = 0; i < std::min(frames, buffer.numSamples); ++i) {
        const auto column = static_cast<std::uint32_t>(static_cast<float>(i) / length * 100.0f);
        const float gain = decayGain(*row, std::min(column, decayTableColumns - 1));
        left[i] *= gain;
        right[i] *= gain;
    }
}

/// Divides the last samples of the response by 4, 8, ... 60.
void taperEnd(SampleBuffer& buffer, std::uint64_t frames) noexcept {
    const std::uint64_t end = std::min(frames, buffer.numSamples);
    if (end < taperLength)
        return;
    for (std::uint64_t channel = 0; channel < 2; ++channel) {
        float* const tail = buffer.channelPointers[channel] + (end - taperLength);
        for (std::uint64_t k = 0; k < taperLength; ++k)
            tail[k] /= static_cast<float>(4 * (k + 1));
    }
}

} // namespace

ReverbFilter::ReverbFilter(double sampleRate, std::uint64_t blockSize,
                           std::unique_ptr<IReverbImpulseResponse> response, const std::string& dataDirectory,
                           std::uint32_t roomId)
    : impulseResponse(std::move(response)), lastDecay(std::bit_cast<float>(quietNan)) {
    const std::unique_ptr<IIrFile> file = IrFileFactory().create(sampleRate, "/OVNdata51", dataDirectory);
    impulseResponse->load(sampleRate, file->nativeSampleRate(), roomId, file->path());
    partitions = static_cast<std::uint64_t>(
        std::ceil(static_cast<float>(impulseResponse->frames()) / static_cast<float>(blockSize)));
    paddedLength = blockSize * partitions;
    upsampling = static_cast<std::int32_t>(sampleRate) / file->nativeSampleRate();
}

void ReverbFilter::update(SampleBuffer& buffer, float decay) {
    hasChanged = decay != lastDecay;
    if (!hasChanged)
        return;
    lastDecay = decay;
    const std::uint64_t frames = impulseResponse->frames();
    if (paddedLength >= shortestReverb) {
        impulseResponse->copyTo(buffer);
        shapeDecay(buffer, frames, decay);
    }
    for (std::uint64_t channel = 0; channel < 2; ++channel) {
        const SampleSpan samples = buffer.channel(channel);
        std::fill(samples.begin() + std::min(frames, samples.length), samples.end(), 0.0f);
    }
    taperEnd(buffer, frames);
}

std::uint64_t ReverbFilter::partitionCount() const noexcept { return partitions; }

std::int32_t ReverbFilter::bandLimitFactor() const noexcept { return upsampling; }

bool ReverbFilter::changed() const noexcept { return hasChanged; }

} // namespace orvane
