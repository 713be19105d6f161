// SPDX-License-Identifier: GPL-3.0-or-later
// Chunks are written out by hand in the framework's binary form of an XML tree: a mark, the text's length,
// the text and a zero. Identifiers are copied from the plug-in's tables, as signed numbers.
#include "BundleSupport.h"

#include "host/HostError.h"
#include "host/PresetFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace orvane::kestrum::host;
using namespace orvane::kestrum::host::test;

using Bytes = std::vector<std::byte>;

Bytes chunk(const std::string& xml) {
    const auto length = static_cast<std::uint32_t>(xml.size());
    std::string text = "VC2!";
    for (int shift = 0; shift < 32; shift += 8)
        text.push_back(static_cast<char>((length >> shift) & 0xFF));
    text += xml;
    text.push_back('\0');
    const auto view = std::as_bytes(std::span(text));
    return {view.begin(), view.end()};
}

class BundleState : public ::testing::Test {
protected:
    PluginInstance plugin{loadBundle()};

    std::string text(const char* name) const { return textIn(plugin, name); }
    static std::string textIn(const PluginInstance& instance, const char* name) {
        const auto id = findParameter(instance, name)->id;
        return instance.textOf(id, instance.normalizedValue(id));
    }
    double number(const char* name) const { return std::strtod(text(name).c_str(), nullptr); }

    void chooseOthers() {
        set(plugin, "layout", "7.1.4");
        set(plugin, "scene", "Kitchen");
        set(plugin, "ambience", "70");
        set(plugin, "focus", "-30");
        set(plugin, "rotation", "45");
        set(plugin, "gain", "-6.5");
        plugin.flushParameters();
    }
    void expectOthers(const PluginInstance& instance) const {
        EXPECT_EQ(textIn(instance, "Speaker Layouts"), "7.1.4");
        EXPECT_EQ(textIn(instance, "Scenes"), "Kitchen");
        const auto value = [&](const char* name) {
            return std::strtod(textIn(instance, name).c_str(), nullptr);
        };
        EXPECT_EQ(value("Ambience"), 70);
        EXPECT_EQ(value("Focus"), -30);
        EXPECT_EQ(value("Head Rotation"), 45);
        EXPECT_NEAR(value("Master Gain"), -6.5, 1e-4);
    }
};

TEST_F(BundleState, GoesFromOneInstanceToAnother) {
    chooseOthers();
    PluginInstance other(loadBundle());
    other.setState(plugin.state());
    expectOthers(other);
}

TEST_F(BundleState, SavedLoadedAndSavedAgainIsTheSameBytes) {
    chooseOthers();
    const PluginState first = plugin.state();
    PluginInstance other(loadBundle());
    other.setState(first);
    EXPECT_EQ(other.state().component, first.component);
}

TEST_F(BundleState, SurvivesAPresetFile) {
    chooseOthers();
    const Preset preset = parsePreset(formatPreset({plugin.classId(), plugin.state()}));
    EXPECT_EQ(preset.classId, plugin.classId());
    PluginInstance other(loadBundle());
    other.setState(preset.state);
    expectOthers(other);
}

TEST_F(BundleState, DefaultsSavedAndLoadedChangeNothing) {
    const PluginState first = plugin.state();
    plugin.setState(first);
    EXPECT_EQ(plugin.state().component, first.component);
    EXPECT_EQ(text("Speaker Layouts"), "2.0 +/-30°");
    EXPECT_EQ(number("Ambience"), 50);
}

TEST_F(BundleState, AHandWrittenChunkIsUnderstood) {
    // 0x596F7D91 and 0xAE828ED9 as signed numbers
    plugin.setState(
        {chunk(R"(<?xml version="1.0" encoding="UTF-8"?> <ORVANEKESTRUM><SpeakerSetup Value="1500478865"/>)"
               R"(<Scene Value="-1367175463"/><Ambience Value="70.0"/><HeadRotation Value="45.0"/>)"
               R"(<Focus Value="-30.0"/><MasterGain Value="-6.5"/></ORVANEKESTRUM>)"),
         {}});
    expectOthers(plugin);
}

TEST_F(BundleState, UnknownIdentifiersFallBackToTheDefaults) {
    chooseOthers();
    plugin.setState({chunk(R"(<ORVANEKESTRUM><SpeakerSetup Value="12345"/><Scene Value="54321"/>)"
                           R"(<Ambience Value="10.0"/></ORVANEKESTRUM>)"),
                     {}});
    EXPECT_EQ(text("Speaker Layouts"), "2.0 +/-30°");
    EXPECT_EQ(text("Scenes"), "Mix Room");
    EXPECT_EQ(number("Ambience"), 10);
}

TEST_F(BundleState, MissingSlidersAreZeroAndAMissingSceneIsTheDefault) {
    chooseOthers();
    plugin.setState({chunk(R"(<ORVANEKESTRUM><SpeakerSetup Value="1500478865"/></ORVANEKESTRUM>)"), {}});
    EXPECT_EQ(text("Speaker Layouts"), "7.1.4");
    EXPECT_EQ(text("Scenes"), "Mix Room");
    for (const char* const name : {"Ambience", "Focus", "Head Rotation", "Master Gain"})
        EXPECT_NEAR(number(name), 0, 1e-4) << name;
}

TEST_F(BundleState, AnotherRootOrNoXmlChangesNothing) {
    chooseOthers();
    for (const Bytes& foreign : {chunk(R"(<OTHER><SpeakerSetup Value="1"/><Ambience Value="5.0"/></OTHER>)"),
                                 chunk("no xml at all"), Bytes(100, std::byte{0x55}), chunk("")}) {
        plugin.setState({foreign, {}});
        expectOthers(plugin);
    }
}

TEST_F(BundleState, ValuesThatAreNoNumbersAreIgnored) {
    chooseOthers();
    plugin.setState({chunk(R"(<ORVANEKESTRUM><SpeakerSetup Value="1500478865"/><Scene Value="-1367175463"/>)"
                           R"(<Ambience Value="nan"/><HeadRotation Value="inf"/><Focus Value="-30.0"/>)"
                           R"(<MasterGain Value="-6.5"/></ORVANEKESTRUM>)"),
                     {}});
    for (const char* const name : {"Ambience", "Focus", "Head Rotation", "Master Gain"})
        EXPECT_TRUE(std::isfinite(number(name))) << name;
    EXPECT_EQ(number("Focus"), -30);
}

/// Property: no damage to a chunk crashes the plug-in or leaves a value that is no number.
TEST_F(BundleState, DamagedChunksDoNoHarm) {
    chooseOthers();
    const PluginState whole = plugin.state();
    std::mt19937 random(11);
    for (int round = 0; round < 300; ++round) {
        PluginState damaged = whole;
        damaged.component[random() % damaged.component.size()] = static_cast<std::byte>(random() & 0xFF);
        if (round % 3 == 0)
            damaged.component.resize(random() % damaged.component.size());
        try {
            plugin.setState(damaged);
        } catch (const HostError&) {
            EXPECT_TRUE(damaged.component.empty())
                << "the framework's wrapper refuses nothing but no bytes at all";
        }
        for (const ParameterInfo& parameter : plugin.parameters())
            ASSERT_TRUE(plugin.normalizedValue(parameter.id) >= 0 &&
                        plugin.normalizedValue(parameter.id) <= 1)
                << parameter.name << ", round " << round;
    }
    plugin.setState(whole);
    expectOthers(plugin);
}

} // namespace
