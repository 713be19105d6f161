// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/ProgressTable.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <memory>

namespace {

using orvane::kestrum::check::ProgressTable;

/// A file is no terminal, as in a log or under a job scheduler.
TEST(ProgressTable, SaysOnceInALogThatEachPieceIsDone) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), std::fclose);
    ProgressTable table(file.get(), {"Club", "Kitchen"});
    table.show({0.5, 0});
    table.show({1, 0.2});
    table.show({1, 0.99});
    table.show({1, 1});
    std::rewind(file.get());
    std::array<char, 200> text{};
    const std::size_t length = std::fread(text.data(), 1, text.size(), file.get());
    EXPECT_EQ(std::string(text.data(), length), "Club: done\nKitchen: done\n");
}

} // namespace
