// SPDX-License-Identifier: GPL-3.0-or-later
// Who may take the link, by what is seen of it; the machine's own link is left alone.
#include "track/LinkClaim.h"

#include "support/CommandOutput.h"
#include "track/TrackError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace orvane::kestrum::track;
using orvane::kestrum::headlink::roomForSegment;
using orvane::kestrum::headlink::SegmentState;
using orvane::kestrum::headlink::TrackStatus;
using ::testing::HasSubstr;

const TrackStatus dead{
    .pid = 1, .source = "demo", .started = 1, .lastPacket = {}, .active = true, .alive = false};

SegmentState whole() {
    SegmentState state;
    state.kind = SegmentState::Kind::whole;
    return state;
}

std::string refusal(const SegmentState& state, const std::optional<TrackStatus>& left) {
    try {
        requireFree(state, left);
        return "";
    } catch (const TrackError& error) {
        return error.what();
    }
}

TEST(LinkClaims, TakeWhatIsMissingInactiveOrNoLink) {
    EXPECT_EQ(refusal({}, {}), "");
    EXPECT_EQ(refusal(whole(), {}), "");
    SegmentState damaged;
    damaged.kind = SegmentState::Kind::damaged;
    EXPECT_EQ(refusal(damaged, {}), "");
}

TEST(LinkClaims, TakeAnActiveLinkThatOursHasLeftUnlessSomebodyMovesIt) {
    SegmentState state = whole();
    state.active = true;
    EXPECT_THAT(refusal(state, {}), HasSubstr("stands still: another tracker drives it, or has crashed"));
    EXPECT_EQ(refusal(state, dead), "");
    state.moving = true;
    EXPECT_THAT(refusal(state, dead), HasSubstr("moves: another tracker drives it. End it"));
}

TEST(LinkClaims, LeaveALinkAloneThatALivingOneOfOursHolds) {
    SegmentState state = whole();
    state.held = true;
    EXPECT_THAT(refusal(state, {}), HasSubstr("of another user or of another XDG_RUNTIME_DIR: end it first"));
    EXPECT_NE(refusal(state, dead), "");
}

TEST(SegmentRoom, IsThereOnThisMachine) { EXPECT_TRUE(roomForSegment()); }

} // namespace
