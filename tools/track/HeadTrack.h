// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "track/Clock.h"
#include "track/OneEuroFilter.h"
#include "track/Rotation.h"
#include "track/Sample.h"
#include "track/SourceChoice.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orvane::kestrum::track {

struct HeadTrackSettings {
    std::vector<Input> priority{Input::osc, Input::openTrack, Input::replay, Input::demo}; ///< Best first.
    Smoothing smoothing;
    double timeoutSeconds = 1; ///< Silence after which the head glides back.
    double glideSeconds = 1;
    double biasDegrees = 0; ///< Added to the yaw, about the head's own vertical axis.
};

/// From what senders say to where the head is for the plug-ins:
///
///     sample ─► source ─► centre and mounting ─► one-euro filter ─► blend over jumps ─► bias
///
/// and, when nothing comes any more, a glide back to straight ahead, after which there is no direction.
///
/// Thread  one. No clock is read; every call is told the time.
class HeadTrack {
public:
    explicit HeadTrack(const HeadTrackSettings& settings);

    /// @return whether the sample changed the direction, which another source's may not.
    bool take(const Sample& sample, Instant now);

    /// The present direction is straight ahead from now on. Nothing before the first sample.
    void recentre(Instant now);

    /// How a sensor sits on the head, by Source::kind(): the rotation from its axes to the head's.
    void setMounting(const std::string& kind, const Rotation& mounting) { mountings[kind] = mounting; }

    /// The present source's direction is `reference` when the head looks straight ahead.
    void setReference(const Rotation& reference, Instant now);

    /// Begins the glide at once, never to be live again.
    void end(Instant now);

    /// Where the head is; empty when nobody drives it.
    std::optional<Rotation> direction(Instant now);

    /// The direction will have changed by then without any sample; empty when it will not.
    std::optional<Instant> nextChange(Instant now) const;

    /// What the present source said last, as it said it.
    const Rotation& raw() const { return lastRaw; }
    const std::optional<Source>& source() const { return choice.current(); }
    Instant lastSample() const { return lastTaken; }

private:
    enum class State { idle, live, gliding };

    Rotation relative(const Rotation& raw) const;
    Rotation blended(Instant now) const;
    void startBlend(const Rotation& from, Instant now);
    void startGlide(Instant now);

    HeadTrackSettings settings;
    SourceChoice choice;
    OneEuroFilter filter;
    std::map<std::string, Rotation> mountings;
    std::map<std::string, Rotation> references; ///< By Source::whose().
    State state = State::idle;
    bool ended = false;
    Instant lastTaken{};
    Rotation lastRaw;
    Rotation calmed;
    Rotation blendOffset; ///< From the calmed direction to where the head was before the jump.
    Instant blendStart{};
    Rotation glideFrom;
    Instant glideStart{};
};

} // namespace orvane::kestrum::track
