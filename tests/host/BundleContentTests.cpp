// SPDX-License-Identifier: GPL-3.0-or-later
// Expected symbols: the three entry points of a VST3 module on Linux and nothing else, so that the module
// shares no name with another one in the same process and can be unloaded.
#include "BundleSupport.h"
#include "support/CommandOutput.h"

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <array>
#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace orvane::kestrum::host;
using namespace orvane::kestrum::host::test;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::UnorderedElementsAre;

std::string inShellQuotes(const std::filesystem::path& path) {
    return std::string("'").append(path.string()).append("'");
}

/// "type name" of each symbol that the module offers to others.
std::vector<std::string> exportedSymbols() {
    std::istringstream lines(
        ::test::outputOf("nm -D --defined-only " + inShellQuotes(Module::binaryOf(bundlePath()))));
    std::vector<std::string> symbols;
    std::string address;
    std::string type;
    std::string name;
    while (lines >> address >> type >> name)
        symbols.push_back(type.append(" ").append(name));
    return symbols;
}

TEST(BundleContent, ExportsExactlyTheThreeEntryPoints) {
    EXPECT_THAT(exportedSymbols(),
                UnorderedElementsAre("T GetPluginFactory", "T ModuleEntry", "T ModuleExit"));
}

TEST(BundleContent, HoldsItsOwnTransformAndHashLibraries) {
    const std::string needed =
        ::test::outputOf("readelf -d " + inShellQuotes(Module::binaryOf(bundlePath())));
    EXPECT_THAT(needed, HasSubstr("NEEDED")); // the listing is one
    EXPECT_THAT(needed, Not(HasSubstr("fftw")));
    EXPECT_THAT(needed, Not(HasSubstr("nettle")));
}

TEST(BundleContent, OffersOneSpatialEffectAndItsEditingHalf) {
    const auto classes = loadBundle()->classes();
    ASSERT_EQ(classes.size(), 2u);
    EXPECT_EQ(classes[0].name, "Orvane KESTRUM");
    EXPECT_EQ(classes[0].category, "Audio Module Class");
    EXPECT_THAT(classes[0].subCategories, HasSubstr("Fx"));
    EXPECT_EQ(classes[0].version, "1.7.0");
    EXPECT_EQ(classes[1].category, "Component Controller Class");
}

TEST(BundleContent, TheModuleDescriptionAgreesWithTheModule) {
    std::ifstream file(bundlePath() / "Contents/Resources/moduleinfo.json");
    ASSERT_TRUE(file);
    // the documented form is JSON5; what is written here has to be plain JSON, which is both
    const auto description = nlohmann::json::parse(file);
    EXPECT_EQ(description.at("Name"), "Orvane KESTRUM");
    EXPECT_EQ(description.at("Version"), "1.7.0");
    const auto classes = loadBundle()->classes();
    ASSERT_EQ(description.at("Classes").size(), classes.size());
    for (std::size_t index = 0; index < classes.size(); ++index) {
        const auto& listed = description.at("Classes")[index];
        EXPECT_EQ(listed.at("CID"), classes[index].id);
        EXPECT_EQ(listed.at("Name"), classes[index].name);
        EXPECT_EQ(listed.at("Category"), classes[index].category);
        EXPECT_EQ(listed.at("Vendor"), classes[index].vendor);
        EXPECT_EQ(listed.at("Version"), classes[index].version);
        EXPECT_EQ(listed.at("SDKVersion"), classes[index].sdkVersion);
    }
}

bool isMapped(const std::filesystem::path& binary) {
    void* const handle = dlopen(binary.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr)
        dlclose(handle);
    return handle != nullptr;
}

TEST(BundleContent, UnloadsWithItsLastOwner) {
    const auto binary = Module::binaryOf(bundlePath());
    auto module = loadBundle();
    EXPECT_TRUE(isMapped(binary));
    module.reset();
    EXPECT_FALSE(isMapped(binary));
}

TEST(BundleContent, UnloadsAfterAnInstanceHasProcessedAndRebuilt) {
    const auto binary = Module::binaryOf(bundlePath());
    for (int round = 0; round < 3; ++round) {
        auto plugin = makeInstance(2, "2.0 +/-30°");
        plugin->prepare(48000, 512, ProcessMode::realtime);
        set(*plugin, "scene", "Analytic Position");
        play(*plugin, noise(2, 20 * 512), 512);
        EXPECT_TRUE(isMapped(binary));
        plugin.reset();
        EXPECT_FALSE(isMapped(binary)) << "round " << round;
    }
}

} // namespace
