// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/StreamTrimmer.h"

#include <algorithm>
#include <cmath>

namespace orvane::kestrum::render {

namespace {

constexpr float floorFactor = 3.1622777e-5f; // -90 dB

} // namespace

bool StreamTrimmer::aboveFloor(const float* frame) const {
    const float level = std::max(std::abs(frame[0]), std::abs(frame[1]));
    return level > peak * floorFactor;
}

void StreamTrimmer::write(std::span<const float> frames) {
    if (frames.empty())
        return;
    sink.write(frames);
    writtenFrames += frames.size() / 2;
}

void StreamTrimmer::push(std::span<const float> stream) {
    const std::uint64_t frames = stream.size() / 2;
    const std::uint64_t skipped = std::min(frames, lengths.delay - std::min(received, lengths.delay));
    received += frames;
    stream = stream.subspan(2 * static_cast<std::size_t>(skipped));

    for (std::size_t index = 0; index + 1 < stream.size(); index += 2) {
        peak = std::max({peak, std::abs(stream[index]), std::abs(stream[index + 1])});
        quietFrames = aboveFloor(&stream[index]) ? 0 : quietFrames + 1;
    }

    const std::uint64_t direct = std::min<std::uint64_t>(stream.size() / 2, lengths.input - writtenFrames);
    write(stream.first(2 * static_cast<std::size_t>(direct)));
    const auto rest = stream.subspan(2 * static_cast<std::size_t>(direct));
    tail.insert(tail.end(), rest.begin(), rest.end());
}

bool StreamTrimmer::finished() const {
    if (writtenFrames < lengths.input)
        return false;
    return quietFrames >= lengths.quiet || tail.size() / 2 >= lengths.tailMax;
}

void StreamTrimmer::close() {
    std::size_t kept = std::min<std::size_t>(tail.size() / 2, static_cast<std::size_t>(lengths.tailMax));
    while (kept > 0 && !aboveFloor(&tail[2 * (kept - 1)]))
        --kept;
    write(std::span<const float>(tail).first(2 * kept));
    tail.clear();
}

} // namespace orvane::kestrum::render
