// SPDX-License-Identifier: GPL-3.0-or-later
// The segment's name belongs to the whole machine: the tests of this program have shared memory of their own.
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
