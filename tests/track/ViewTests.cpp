// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/View.h"

#include <gtest/gtest.h>

#include <chrono>

namespace {

using namespace orvane::kestrum::track;
using std::chrono::milliseconds;

constexpr Source phone{.input = Input::osc, .family = "/ypr", .address = 0x7f000001, .port = 50123};

TEST(Views, TellSourceRateAnglesAndAge) {
    View view;
    const Instant start = Instant(std::chrono::hours(1));
    view.advance(start);
    for (int sample = 0; sample < 60; ++sample)
        view.countSample();
    view.advance(start + milliseconds(1000));
    EXPECT_EQ(view.line(phone, HeadAngles{12.34, -3, 0.06}, milliseconds(8)),
              "osc /ypr from 127.0.0.1:50123   60/s  yaw  +12.3  pitch  -3.0  roll  +0.1     8 ms");
}

TEST(Views, TellThatNobodySendsAndWhatCouldNotBeUsed) {
    View view;
    EXPECT_EQ(view.line({}, {}, {}), "waiting for a sender");
    view.countUnusable(3);
    EXPECT_EQ(view.line({}, {}, {}), "waiting for a sender  3 unusable");
    EXPECT_EQ(view.line(phone, {}, std::chrono::seconds(5)),
              "osc /ypr from 127.0.0.1:50123  silent for 5 s, the dial is free  3 unusable");
}

} // namespace
