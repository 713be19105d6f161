// SPDX-License-Identifier: GPL-3.0-or-later
// Who can send to the whole program, and who can write to what it makes: the system's own lists say.
#include "WholeProgram.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <sys/stat.h>

namespace {

using ::test::TrackProgram;
using ::test::WholeProgram;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

namespace fs = std::filesystem;

const std::vector<std::string> anyPort{"--osc-port", "0", "--opentrack-port", "0"};

/// "socket:[1234]" for each that the process has open.
std::set<std::string> socketsOf(pid_t process) {
    std::set<std::string> sockets;
    for (const auto& entry : fs::directory_iterator("/proc/" + std::to_string(process) + "/fd")) {
        std::error_code gone;
        sockets.insert(fs::read_symlink(entry, gone).string());
    }
    return sockets;
}

/// The addresses, in the kernel's spelling, on which the process can be reached from a network.
std::vector<std::string> addressesOf(pid_t process) {
    const auto sockets = socketsOf(process);
    std::vector<std::string> addresses;
    for (const char* protocol : {"udp", "udp6", "tcp", "tcp6", "raw", "raw6"}) {
        std::ifstream list("/proc/" + std::to_string(process) + "/net/" + protocol);
        std::string line;
        std::getline(list, line); // the heading
        while (std::getline(list, line)) {
            std::istringstream words(line);
            std::array<std::string, 10> fields; // the second is the address and port, the tenth the inode
            for (std::string& field : fields)
                words >> field;
            if (sockets.contains("socket:[" + fields[9] + "]"))
                addresses.push_back(fields[1].substr(0, fields[1].find(':')));
        }
    }
    return addresses;
}

TEST_F(WholeProgram, HearsProgramsOfThisMachineAloneUnlessToldOtherwise) {
    const TrackProgram program(anyPort);
    EXPECT_THAT(addressesOf(program.id()), UnorderedElementsAre("0100007F", "0100007F")); // 127.0.0.1
}

TEST_F(WholeProgram, HearsOtherMachinesWhenToldSo) {
    auto arguments = anyPort;
    arguments.emplace_back("--listen");
    const TrackProgram program(arguments);
    EXPECT_THAT(addressesOf(program.id()), UnorderedElementsAre("00000000", "00000000")); // any
}

TEST_F(WholeProgram, OpensNoPortForAMovementOfItsOwn) {
    const TrackProgram program({"--demo"});
    EXPECT_THAT(addressesOf(program.id()), IsEmpty());
}

/// Under a mask that forbids nothing.
TEST_F(WholeProgram, MakesNothingThatEverybodyMayWrite) {
    const mode_t usual = umask(0);
    const TrackProgram program(anyPort);
    umask(usual);
    std::vector<fs::path> made{"/dev/shm/OrvaneSharedMemory"};
    for (const auto& entry : fs::recursive_directory_iterator(TrackProgram::folder()))
        made.push_back(entry.path());
    EXPECT_THAT(made, SizeIs(testing::Ge(2u))); // the link and the status
    for (const fs::path& path : made) {
        struct stat facts {};
        ASSERT_EQ(stat(path.c_str(), &facts), 0) << path;
        EXPECT_EQ(facts.st_mode & S_IWOTH, 0u) << path;
    }
}

} // namespace
