// SPDX-License-Identifier: GPL-3.0-or-later
#include "room/ReverbImpulseResponse.h"

#include "data/WaveFrames.h"
#include "room/ReverbRooms.h"

#include <algorithm>

namespace orvane {

ReverbImpulseResponse::ReverbImpulseResponse(const IFileReader* reader) noexcept : reader(reader) {}

void ReverbImpulseResponse::load(double sampleRate, std::int32_t fileRate, std::uint32_t roomId,
                                 const std::string& path) {
    const ReverbRoom room = reverbRoom(roomId);
    gain = room.gain;
    samples = reader->read(path, 2 * reverbFrames(roomId, fileRate), reverbTableSize, room.entry);
    const auto runningRate = static_cast<std::int32_t>(sampleRate);
    if (runningRate != fileRate) {
        samples.resize(samples.size() * static_cast<std::uint64_t>(runningRate / fileRate));
        zeroStuff(samples, fileRate, runningRate, 2);
    }
}

std::uint64_t ReverbImpulseResponse::frames() const noexcept { return samples.size() / 2; }

void ReverbImpulseResponse::copyTo(SampleBuffer& buffer) const {
    float* const left = buffer.channelPointers[0];
    float* const right = buffer.channelPointers[1];
    for (std::uint64_t i = 0; i < std::min(frames(), buffer.numSamples); ++i) {
        left[i] = gain * samples[2 * i];
        right[i] = gain * samples[2 * i + 1];
    }
}

} // namespace orvane
