// SPDX-License-Identifier: GPL-3.0-or-later
// Expected paths follow the bundle format's public description; texts are this host's own.
#include "host/Module.h"

#include "host/HostError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

using orvane::kestrum::host::HostError;
using orvane::kestrum::host::Module;
using ::testing::EndsWith;
using ::testing::HasSubstr;

std::string messageOf(const std::filesystem::path& bundle) {
    try {
        const Module module(bundle);
        return "loaded";
    } catch (const HostError& error) {
        return error.what();
    }
}

/// A folder of this test's own, gone at its end.
class ModuleOnDisk : public ::testing::Test {
protected:
    ModuleOnDisk()
        : folder(std::filesystem::temp_directory_path() /
                 (std::string("kestrum_module_") +
                  ::testing::UnitTest::GetInstance()->current_test_info()->name())) {
        std::filesystem::create_directories(folder);
    }

public:
    ~ModuleOnDisk() override { std::filesystem::remove_all(folder); }

protected:
    std::filesystem::path folder;
};

TEST(Module, TheBinaryBearsTheBundlesNameWithOrWithoutAClosingSlash) {
    EXPECT_THAT(Module::binaryOf("/plugins/A B.vst3").string(), EndsWith("-linux/A B.so"));
    EXPECT_EQ(Module::binaryOf("/plugins/A B.vst3/"), Module::binaryOf("/plugins/A B.vst3"));
}

TEST(Module, AMissingBundleIsNamed) {
    EXPECT_EQ(messageOf("/nowhere/x.vst3"), "There is no VST3 bundle at \"/nowhere/x.vst3\".");
}

TEST_F(ModuleOnDisk, ABundleForAnotherMachineIsRefused) {
    std::filesystem::create_directories(folder / "x.vst3/Contents/m68k-linux");
    EXPECT_THAT(messageOf(folder / "x.vst3"), HasSubstr("holds no module for this machine"));
}

TEST_F(ModuleOnDisk, AFileThatIsNoLibraryIsRefused) {
    const auto binary = Module::binaryOf(folder / "x.vst3");
    std::filesystem::create_directories(binary.parent_path());
    std::ofstream(binary) << "no library";
    EXPECT_THAT(messageOf(folder / "x.vst3"), HasSubstr("The module cannot be loaded"));
}

TEST_F(ModuleOnDisk, ALibraryWithoutEntryPointsIsRefused) {
    const auto binary = Module::binaryOf(folder / "x.vst3");
    std::filesystem::create_directories(binary.parent_path());
    // any shared library of the system that is no plug-in
    std::filesystem::copy_file("/lib/x86_64-linux-gnu/libz.so.1", binary);
    EXPECT_THAT(messageOf(folder / "x.vst3"), HasSubstr("has no entry point ModuleEntry"));
}

} // namespace
