// SPDX-License-Identifier: GPL-3.0-or-later
// The place of the data folder is fixed, so each of these tests hides it from itself alone: it runs in a
// process of its own, in a mount namespace of its own, where an empty file system lies over /opt.
#include "BundleSupport.h"

#include "support/PrivateMounts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

using namespace orvane::kestrum::host;
using namespace orvane::kestrum::host::test;

/// Leaves this process without the data folder. Ends it with status 99 where the system does not allow that.
void hideData() {
    try {
        ::test::enterPrivateMounts();
        ::test::coverFolder("/opt");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        std::_Exit(99);
    }
}

[[noreturn]] void playWithoutData() {
    hideData();
    bool silent = true;
    {
        const auto plugin = makeInstance(2, "2.0 +/-30°");
        plugin->prepare(48000, 256, ProcessMode::realtime);
        silent = peakOf(play(*plugin, noise(2, 50 * 256), 256)) == 0.0f && plugin->latency() == 256;
    }
    std::_Exit(silent ? 0 : 1);
}

[[noreturn]] void renderWithoutData(const std::string& input, const std::string& output) {
    hideData();
    execl(KESTRUM_PROGRAM, "kestrum", "render", input.c_str(), output.c_str(), static_cast<char*>(nullptr));
    std::_Exit(98);
}

/// Fresh processes: threads of modules that other tests loaded would not survive a plain fork.
class HiddenData : public ::testing::Test {
protected:
    HiddenData() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(HiddenData, ThePlugInIsSilentAndBearsIt) {
    EXPECT_EXIT(playWithoutData(), ::testing::ExitedWithCode(0), "");
}

TEST_F(HiddenData, TheProgramRefusesWithTheRemedy) {
    const auto folder = std::filesystem::temp_directory_path() / "kestrum_hidden_data";
    std::filesystem::create_directories(folder);
    const auto input = folder / "in.wav";
    // the smallest WAV file of two channels: 48 kHz, 16 bits, one frame
    const std::string wav("RIFF\x28\0\0\0WAVEfmt "
                          "\x10\0\0\0\x01\0\x02\0\x80\xBB\0\0\0\xEE\x02\0\x04\0\x10\0data\x04\0\0\0\0\0\0\0",
                          48);
    std::ofstream(input, std::ios::binary) << wav;
    EXPECT_EXIT(renderWithoutData(input.string(), (folder / "out.wav").string()),
                ::testing::ExitedWithCode(1),
                "The plug-in's data folder .* is missing: \"kestrum doctor\" names the command");
    std::filesystem::remove_all(folder);
}

} // namespace
