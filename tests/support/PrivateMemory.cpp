// SPDX-License-Identifier: GPL-3.0-or-later
// The segment's name belongs to the whole machine. A program that has this file among its sources gives its tests shared memory
// of their own, so that they neither meet nor disturb others.
#include "support/PrivateMounts.h"

#include <gtest/gtest.h>

namespace {

class PrivateMemory : public ::testing::Environment {
public:
    void SetUp() override {
        test::enterPrivateMounts();
        test::coverFolder("/dev/shm", "mode=1777");
    }
};

[[maybe_unused]] const ::testing::Environment* const privateMemory =
    ::testing::AddGlobalTestEnvironment(new PrivateMemory); // the framework deletes it

} // namespace
