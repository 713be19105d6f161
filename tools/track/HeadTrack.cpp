// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/HeadTrack.h"

#include <algorithm>
#include <chrono>

namespace orvane::kestrum::track {

namespace {

constexpr double blendSeconds = 0.25;
constexpr double longestHoldSeconds = 0.5;
constexpr std::chrono::milliseconds frame{10}; ///< Between two directions of a glide or a blend.

/// Zero slope at both ends.
double smoothStep(double share) { return share * share * (3 - 2 * share); }

Rotation entryOrNone(const std::map<std::string, Rotation>& map, const std::string& key) {
    const auto entry = map.find(key);
    return entry == map.end() ? Rotation{} : entry->second;
}

} // namespace

HeadTrack::HeadTrack(const HeadTrackSettings& settings)
    : settings(settings),
      choice(settings.priority, durationOf(std::min(longestHoldSeconds, settings.timeoutSeconds))),
      filter(settings.smoothing) {}

bool HeadTrack::take(const Sample& sample, Instant now) {
    const auto before = choice.current();
    if (ended || !choice.admits(sample.source, now))
        return false;
    const auto shown = direction(now);
    const bool jumps = state == State::gliding || (state == State::live && before != sample.source);
    if (jumps || state == State::idle)
        filter.reset();
    lastRaw = sample.rotation;
    lastTaken = now;
    calmed = filter.step(relative(lastRaw), now);
    if (state == State::idle)
        blendStart = now - durationOf(2 * blendSeconds);
    state = State::live;
    if (jumps)
        startBlend(*shown, now);
    return true;
}

void HeadTrack::recentre(Instant now) {
    if (choice.current())
        setReference(lastRaw, now);
}

void HeadTrack::setReference(const Rotation& reference, Instant now) {
    if (!choice.current())
        return;
    const auto shown = direction(now);
    references[choice.current()->whose()] = reference;
    if (state != State::live)
        return;
    filter.reset();
    calmed = filter.step(relative(lastRaw), now);
    startBlend(*shown, now);
}

void HeadTrack::end(Instant now) {
    if (ended)
        return;
    if (state == State::live)
        startGlide(now);
    ended = true;
}

std::optional<Rotation> HeadTrack::direction(Instant now) {
    if (state == State::live && now - lastTaken > durationOf(settings.timeoutSeconds))
        startGlide(now);
    const Rotation bias = rotationOf(HeadAngles{settings.biasDegrees, 0, 0});
    if (state == State::live)
        return blended(now) * bias;
    if (state == State::idle)
        return std::nullopt;
    const double elapsed = secondsOf(now - glideStart);
    if (elapsed >= settings.glideSeconds) {
        state = State::idle;
        return std::nullopt;
    }
    return between(glideFrom, {}, smoothStep(elapsed / settings.glideSeconds)) * bias;
}

std::optional<Instant> HeadTrack::nextChange(Instant now) const {
    if (state == State::gliding || (state == State::live && now - blendStart < durationOf(blendSeconds)))
        return now + frame;
    if (state == State::live)
        return lastTaken + durationOf(settings.timeoutSeconds) + std::chrono::milliseconds(1);
    return std::nullopt;
}

/// The room's direction of a sensor that is turned by its place on the head and by where "ahead" was for it.
Rotation HeadTrack::relative(const Rotation& raw) const {
    const Rotation mounting = entryOrNone(mountings, choice.current()->kind());
    return mounting * inverse(entryOrNone(references, choice.current()->whose())) * raw * inverse(mounting);
}

Rotation HeadTrack::blended(Instant now) const {
    const double share = secondsOf(now - blendStart) / blendSeconds;
    if (share >= 1)
        return calmed;
    return between(blendOffset, {}, smoothStep(std::max(share, 0.0))) * calmed;
}

void HeadTrack::startBlend(const Rotation& from, Instant now) {
    const Rotation withoutBias = from * rotationOf(HeadAngles{-settings.biasDegrees, 0, 0});
    blendOffset = withoutBias * inverse(calmed);
    blendStart = now;
}

void HeadTrack::startGlide(Instant now) {
    glideFrom = blended(now);
    glideStart = now;
    state = State::gliding;
}

} // namespace orvane::kestrum::track
