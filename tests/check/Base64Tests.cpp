// SPDX-License-Identifier: GPL-3.0-or-later
// Expected texts are the test vectors of RFC 4648, section 10.
#include "check/Base64.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using orvane::kestrum::check::base64;

TEST(Base64, IsThatOfTheStandard) {
    EXPECT_EQ(base64(""), "");
    EXPECT_EQ(base64("f"), "Zg==");
    EXPECT_EQ(base64("fo"), "Zm8=");
    EXPECT_EQ(base64("foo"), "Zm9v");
    EXPECT_EQ(base64("foobar"), "Zm9vYmFy");
}

TEST(Base64, TakesAnyByte) { EXPECT_EQ(base64(std::string("\x00\xff\xfe", 3)), "AP/+"); }

} // namespace
