// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LinkEnds.h"
#include "TrackProgram.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace test {

/// Tests of the built program, which leave no link and no folder behind.
class WholeProgram : public ::testing::Test {
public:
    ~WholeProgram() override { std::filesystem::remove_all(TrackProgram::folder()); }

private:
    const ::test::CleanLink clean;
};

} // namespace test
