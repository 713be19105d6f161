// SPDX-License-Identifier: GPL-3.0-or-later
#include "track/SenderTable.h"

#include <gtest/gtest.h>

namespace {

using orvane::kestrum::track::SenderTable;

constexpr std::uint32_t here = 0x7f000001;
constexpr std::uint32_t there = 0xc0a80102;

TEST(SenderTables, KnowASenderThatKeepsItsPortByIt) {
    SenderTable table;
    for (int packet = 0; packet < 3; ++packet) {
        EXPECT_EQ(table.known(here, 5000), 5000);
        EXPECT_EQ(table.known(there, 5000), 5000);
    }
}

TEST(SenderTables, KnowASenderWithAPortForEveryPacketByItsFirst) {
    SenderTable table;
    for (std::uint16_t port = 5000; port < 5200; ++port)
        EXPECT_EQ(table.known(here, port), 5000);
    EXPECT_EQ(table.known(there, 6000), 6000);
}

// Strictly in turn is the hardest case: each port is new when the other's has been heard once.
TEST(SenderTables, TellTwoSendersOfOneMachineApartFromTheirSecondPacketOn) {
    SenderTable table;
    table.known(here, 5000);
    table.known(here, 6000);
    for (int round = 0; round < 10; ++round) {
        EXPECT_EQ(table.known(here, 5000), 5000);
        EXPECT_EQ(table.known(here, 6000), 6000);
    }
}

TEST(SenderTables, TakeANewPortBesideALastingOneForAnotherSender) {
    SenderTable table;
    table.known(here, 5000);
    table.known(here, 5000);
    EXPECT_EQ(table.known(here, 6000), 6000);
    EXPECT_EQ(table.known(here, 5000), 5000);
}

TEST(SenderTables, OutliveStrangersWithEverNewAddresses) {
    SenderTable table;
    for (std::uint32_t address = 1; address < 1000; ++address) {
        EXPECT_EQ(table.known(address, 7000), 7000);
        EXPECT_EQ(table.known(here, 5000), 5000); // heard again and again, so never forgotten
    }
}

} // namespace
