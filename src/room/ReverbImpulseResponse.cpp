// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/ReverbImpulseResponse.h"

#include "room/ReverbRooms.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace orvane {

ReverbImpulseResponse::ReverbImpulseResponse(const IFileReader* reader) noexcept
    : reader(reader), samples(std::make_shared<const std::vector<float>>()) {}

void ReverbImpulseResponse::load(double sampleRate, std::int32_t fileRate, std::uint32_t roomId,
                                 const std::string& path) {
    const ReverbRoom room = reverbRoom(roomId);
    gain = room.gain;
    samples = shareSamples(
        room.entry, reader->read(path, 2 * reverbFrames(roomId, fileRate), reverbTableSize, room.entry));
    upsampling = static_cast<std::uint64_t>(static_cast<std::int32_t>(sampleRate) / fileRate);
}

std::uint64_t ReverbImpulseResponse::frames() const noexcept { return samples->size() / 2 * upsampling; }

void ReverbImpulseResponse::copyTo(SampleBuffer& buffer) const {
    float* const left = buffer.channelPointers[0];
    float* const right = buffer.channelPointers[1];
    const std::uint64_t count = std::min(frames(), buffer.numSamples);
    if (upsampling > 1) {
        std::fill_n(left, count, 0.0f);
        std::fill_n(right, count, 0.0f);
    }
    const float* stored = samples->data();
    for (std::uint64_t i = 0; i < count; i += upsampling, stored += 2) {
        left[i] = gain * stored[0];
        right[i] = gain * stored[1];
    }
}

} // namespace orvane
