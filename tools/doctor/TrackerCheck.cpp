// SPDX-License-Identifier: GPL-3.0-or-later
#include "doctor/Checks.h"

#include "headlink/Segment.h"
#include "headlink/TrackStatus.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace orvane::kestrum::doctor {

namespace {

using headlink::SegmentState;
using headlink::TrackStatus;

constexpr const char* subject = "tracker";
constexpr const char* startTracker = "kestrum track   # before the DAW loads the plug-in";
constexpr double silentAfterSeconds = 5;

std::string segmentPath(const Places& places) { return "/dev/shm/" + places.segment; }

std::string restart(const Places& places) {
    return "rm " + segmentPath(places) + " && kestrum track   # then reopen the session in the DAW";
}

std::string inSeconds(double seconds) {
    std::string text = std::to_string(std::lround(seconds * 10));
    text.insert(0, text.size() < 2 ? "0" : "");
    return text.insert(text.size() - 1, ".") + " s";
}

std::string name(const TrackStatus& status) {
    return "kestrum track (process " + std::to_string(status.pid) + ")";
}

/// Kinds of segment that no instance can use.
Finding unusable(const SegmentState& state, const Places& places) {
    const std::string path = inQuotes(segmentPath(places));
    switch (state.kind) {
    case SegmentState::Kind::closed:
        return {subject, Verdict::fault,
                "You may not read and write " + path +
                    ", so the plug-in does not see the tracker: it runs as somebody else.",
                "sudo rm " + segmentPath(places) + "   # then start the tracker as yourself"};
    case SegmentState::Kind::foreign:
        return {subject, Verdict::fault,
                path + " belongs to somebody else, or others may write to it, who could stop your host: "
                       "instances do without.",
                "sudo rm " + segmentPath(places) + "   # then start the tracker as yourself"};
    case SegmentState::Kind::wrongSize:
        return {subject, Verdict::fault,
                path + " has " + std::to_string(state.size) +
                    " bytes instead of 65536: no tracker of this link has made it.",
                restart(places)};
    case SegmentState::Kind::damaged:
        return {subject, Verdict::fault, path + " is damaged or was never finished: instances do without.",
                restart(places)};
    default:
        return {subject, Verdict::fault, path + " holds no head rotation: instances do without.",
                restart(places)};
    }
}

Finding withoutSegment(const std::optional<TrackStatus>& status) {
    if (status && status->alive)
        return {subject, Verdict::fault,
                name(*status) + " runs, but its link is gone: another tracker has taken it away.",
                "kill " + std::to_string(status->pid) +
                    " && kestrum track   # then reopen the session in the DAW"};
    return {subject, Verdict::note, "No tracker is running: the Head Rotation dial decides.", startTracker};
}

Finding ofOwnTracker(const SegmentState& state, const TrackStatus& status) {
    std::string text = name(status) + " drives the link";
    if (!status.source.empty())
        text += " from " + status.source;
    if (!status.lastPacket)
        return {subject, Verdict::note, text + ", and has received nothing yet.",
                "kestrum track --help   # tells how to send"};
    const double age = std::max(0.0, headlink::unixTime() - *status.lastPacket);
    text += ", last packet " + inSeconds(age) + " ago, " + (state.active ? "active." : "not active.");
    if (age > silentAfterSeconds)
        return {subject, Verdict::warning, text + " The sender has fallen silent.",
                "kestrum track --help   # tells how to send"};
    return {subject, Verdict::good, text, {}};
}

Finding ofOtherTracker(const SegmentState& state, const std::optional<TrackStatus>& status) {
    if (status && state.active && !state.moving)
        return {subject, Verdict::warning,
                name(*status) + " has ended without switching off: its last direction stays in force.",
                "kestrum track   # gives the dial back; then reopen the session in the DAW"};
    if (!state.active)
        return {
            subject, Verdict::note, "The link is there and not active: the Head Rotation dial decides.", {}};
    return {subject,
            Verdict::good,
            std::string(state.held
                            ? "A kestrum track, but none of yours (of another user or XDG_RUNTIME_DIR), "
                            : "No kestrum track of yours, but another tracker ") +
                "drives the link, active and " + (state.moving ? "moving." : "still while it was looked at."),
            {}};
}

} // namespace

Findings checkTracker(const Places& places) {
    const SegmentState state = headlink::lookAtSegment(places.segment, places.user);
    const auto status = headlink::readStatus(places.runtime / "track.json");
    if (state.kind == SegmentState::Kind::missing)
        return {withoutSegment(status)};
    if (state.kind != SegmentState::Kind::whole)
        return {unusable(state, places)};
    if (state.locked)
        return {{subject, Verdict::fault,
                 "A tracker has died while it held the link's lock: every instance that follows it hangs.",
                 restart(places)}};
    Findings findings{status && status->alive ? ofOwnTracker(state, *status) : ofOtherTracker(state, status)};
    const Findings tooEarly = checkInstances(places, state.inode);
    findings.insert(findings.end(), tooEarly.begin(), tooEarly.end());
    return findings;
}

} // namespace orvane::kestrum::doctor
