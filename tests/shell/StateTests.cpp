// SPDX-License-Identifier: GPL-3.0-or-later
// What a host stores with its session, and what comes of foreign, old and damaged chunks.
#include "TestProcessor.h"

#include "parameters/core/Scene.h"
#include "parameters/core/SelectorId.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <random>

namespace {

using orvane::kestrum::core::selectorId;
using test::Processor;

struct Values {
    std::uint32_t speakerSetup = 0;
    std::uint32_t scene = 0;
    float ambience = 0;
    float focus = 0;
    float headRotation = 0;
    float masterGain = 0;

    bool operator==(const Values&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Values& values) {
    return stream << std::hex << values.speakerSetup << ' ' << values.scene << std::dec << ' '
                  << values.ambience << ' ' << values.focus << ' ' << values.headRotation << ' '
                  << values.masterGain;
}

const Values defaults{0xEDE88239, 0x1AC2A1C3, 50, 0, 0, 0};
const Values unusual{0x4AB55920, 0xAE828ED9, 83, -41, -179, 24};

Values valuesOf(Processor& processor) {
    auto& state = *processor.getProcessorState();
    return {state.getSpeakerSetup()->getValue(), state.getScene()->getValue(),
            state.getAmbience()->getValue(),     state.getFocus()->getValue(),
            state.getHeadRotation()->getValue(), state.getMasterGain()->getValue()};
}

void setValues(Processor& processor, const Values& values) {
    auto& state = *processor.getProcessorState();
    state.getSpeakerSetup()->setValue(values.speakerSetup);
    state.getScene()->setValue(values.scene);
    state.getAmbience()->setValue(values.ambience);
    state.getFocus()->setValue(values.focus);
    state.getHeadRotation()->setValue(values.headRotation);
    state.getMasterGain()->setValue(values.masterGain);
}

std::unique_ptr<Processor> processorWith(const Values& values) {
    auto processor = test::makeProcessor([] { return std::string("/nonexistent"); });
    setValues(*processor, values);
    return processor;
}

juce::MemoryBlock chunkOf(Processor& processor) {
    juce::MemoryBlock chunk;
    processor.getStateInformation(chunk);
    return chunk;
}

void load(Processor& processor, const juce::MemoryBlock& chunk) {
    processor.setStateInformation(chunk.getData(), static_cast<int>(chunk.getSize()));
}

/// The framework's binary form, byte by byte: its own writer does not survive text between tags.
juce::MemoryBlock chunkFrom(const std::string& xml) {
    juce::MemoryBlock chunk;
    juce::MemoryOutputStream stream(chunk, false);
    stream.writeInt(0x21324356); // "VC2!"
    stream.writeInt(static_cast<int>(xml.size()));
    stream.write(xml.c_str(), xml.size() + 1);
    return chunk;
}

TEST(StateChunk, IsATreeOfSixChildrenInTheirOrderWithIdentifiersAsSignedNumbers) {
    const auto processor = processorWith(unusual);
    const auto chunk = chunkOf(*processor);
    const auto xml =
        juce::AudioProcessor::getXmlFromBinary(chunk.getData(), static_cast<int>(chunk.getSize()));
    ASSERT_NE(xml, nullptr);
    EXPECT_EQ(xml->getTagName(), juce::String("ORVANEKESTRUM"));
    EXPECT_EQ(xml->getNumAttributes(), 0);
    std::vector<std::string> children;
    for (const auto* const child : xml->getChildIterator()) {
        EXPECT_EQ(child->getNumAttributes(), 1);
        EXPECT_EQ(child->getNumChildElements(), 0);
        children.push_back((child->getTagName() + " " + child->getStringAttribute("Value")).toStdString());
    }
    EXPECT_THAT(children,
                ::testing::ElementsAre("SpeakerSetup 1253398816", "Scene -1367175463", "Ambience 83.0",
                                       "HeadRotation -179.0", "Focus -41.0", "MasterGain 24.0"));
}

TEST(StateChunk, SavingTheDefaultsAndLoadingThemLeavesEveryValueUnchanged) {
    const auto processor = processorWith(defaults);
    load(*processor, chunkOf(*processor));
    EXPECT_EQ(valuesOf(*processor), defaults);
}

TEST(StateChunk, WhatIsSavedComesBackAndIsSavedAgainByteForByte) {
    // Property over seeded values, each first brought onto its grid by being set.
    std::mt19937 generator(11);
    const auto scenes = orvane::kestrum::core::Scene::identifiers();
    for (int round = 0; round < 200; ++round) {
        std::vector<std::uint32_t> layouts;
        const auto source = processorWith(defaults);
        source->getSupportedLayouts()->forEach([&](const auto& layout) { layouts.push_back(layout.id); });
        setValues(*source,
                  {layouts[generator() % layouts.size()], scenes[generator() % scenes.size()],
                   static_cast<float>(generator() % 101), static_cast<float>(generator() % 201) - 100.0f,
                   static_cast<float>(generator() % 361) - 180.0f,
                   -96.0f + 0.1f * static_cast<float>(generator() % 1201)});
        const auto target = processorWith(unusual);
        const auto chunk = chunkOf(*source);
        load(*target, chunk);
        ASSERT_EQ(valuesOf(*target), valuesOf(*source));
        ASSERT_EQ(chunkOf(*target), chunk);
    }
}

TEST(StateChunk, LoadingShowsInTheHostParameters) {
    const auto source = processorWith(unusual);
    const auto target = processorWith(defaults);
    load(*target, chunkOf(*source));
    for (int index = 0; index < 6; ++index)
        EXPECT_EQ(target->getParameters()[index]->getValue(), source->getParameters()[index]->getValue())
            << index;
    EXPECT_EQ(test::parameter(*target, "Scenes").getCurrentValueAsText(), juce::String("Kitchen"));
}

TEST(ForeignState, UnknownIdentifiersBecomeTheDefaults) {
    const auto processor = processorWith(unusual);
    load(*processor, chunkFrom(R"(<ORVANEKESTRUM><SpeakerSetup Value="17"/><Scene Value="-18"/>
        <Ambience Value="10"/><HeadRotation Value="20"/><Focus Value="30"/><MasterGain Value="-6"/></ORVANEKESTRUM>)"));
    EXPECT_EQ(valuesOf(*processor), (Values{defaults.speakerSetup, defaults.scene, 10, 30, 20, -6}));
}

TEST(ForeignState, AnotherRootTypeChangesNothing) {
    const auto processor = processorWith(unusual);
    load(*processor,
         chunkFrom(R"(<OTHERPLUGIN><SpeakerSetup Value="17"/><Ambience Value="10"/></OTHERPLUGIN>)"));
    EXPECT_EQ(valuesOf(*processor), unusual);
}

TEST(ForeignState, WithOnlyALayoutTheSceneBecomesTheDefaultAndAllSlidersBecomeZero) {
    const auto processor = processorWith(unusual);
    load(*processor, chunkFrom(R"(<ORVANEKESTRUM><SpeakerSetup Value="1555591991"/></ORVANEKESTRUM>)"));
    EXPECT_EQ(valuesOf(*processor), (Values{0x5CB87337, defaults.scene, 0, 0, 0, 0})); // "Quad"
}

TEST(ForeignState, AnEmptyTreeOfOurTypeGivesDefaultsAndZeros) {
    const auto processor = processorWith(unusual);
    load(*processor, chunkFrom("<ORVANEKESTRUM/>"));
    EXPECT_EQ(valuesOf(*processor), (Values{defaults.speakerSetup, defaults.scene, 0, 0, 0, 0}));
}

TEST(ForeignState, NumbersThatAreNotFiniteAreIgnoredOneByOne) {
    const auto processor = processorWith(unusual);
    load(*processor,
         chunkFrom(R"(<ORVANEKESTRUM><SpeakerSetup Value="1253398816"/><Scene Value="-1367175463"/>
        <Ambience Value="nan"/><HeadRotation Value="inf"/><Focus Value="-inf"/><MasterGain Value="1e300"/>
        </ORVANEKESTRUM>)"));
    EXPECT_EQ(valuesOf(*processor), unusual);
}

TEST(ForeignState, NumbersBeyondTheRangeAreLimitedByTheHostParameters) {
    const auto processor = processorWith(defaults);
    load(*processor, chunkFrom(R"(<ORVANEKESTRUM><Ambience Value="101"/><HeadRotation Value="-1000"/>
        <Focus Value="3.4"/><MasterGain Value="1e30"/></ORVANEKESTRUM>)"));
    EXPECT_EQ(valuesOf(*processor), (Values{defaults.speakerSetup, defaults.scene, 100, 3, -180, 24}));
}

TEST(ForeignState, UnknownChildrenAndPropertiesAreLeftOut) {
    const auto processor = processorWith(defaults);
    load(*processor,
         chunkFrom(R"(<ORVANEKESTRUM Version="9"><Width Value="3"/><Ambience Value="7" Extra="1"/>text
        <Focus Value="8"><Deep/></Focus></ORVANEKESTRUM>)"));
    EXPECT_EQ(valuesOf(*processor), (Values{defaults.speakerSetup, defaults.scene, 7, 8, 0, 0}));
}

/// Property: a chunk is taken over as a whole or not at all.
TEST(DamagedState, ACutChunkChangesNothingUnlessAllOfItsTreeIsThere) {
    const auto source = processorWith(unusual);
    const auto chunk = chunkOf(*source);
    const auto target = processorWith(defaults);
    std::size_t refused = 0;
    for (std::size_t length = 0; length < chunk.getSize(); ++length) {
        setValues(*target, defaults);
        target->setStateInformation(chunk.getData(), static_cast<int>(length));
        const Values now = valuesOf(*target);
        EXPECT_TRUE(now == defaults || now == unusual) << length << ": " << now;
        if (now == defaults)
            ++refused;
    }
    EXPECT_EQ(refused, chunk.getSize() - 1); // only the closing zero may be missing
}

TEST(DamagedState, RandomBytesChangeNothing) {
    std::mt19937 generator(3);
    const auto processor = processorWith(unusual);
    for (int round = 0; round < 500; ++round) {
        std::vector<std::uint8_t> bytes(generator() % 300);
        for (auto& byte : bytes)
            byte = static_cast<std::uint8_t>(generator());
        processor->setStateInformation(bytes.data(), static_cast<int>(bytes.size()));
        ASSERT_EQ(valuesOf(*processor), unusual) << round;
    }
    processor->setStateInformation(nullptr, 0);
    EXPECT_EQ(valuesOf(*processor), unusual);
}

/// Property: whatever single bytes of a chunk are changed, every value stays one that could have been set by
/// hand.
TEST(DamagedState, ChangedBytesNeverBringInAnImpossibleValue) {
    std::mt19937 generator(4);
    const auto source = processorWith(unusual);
    const auto chunk = chunkOf(*source);
    const auto target = processorWith(defaults);
    for (int round = 0; round < 3000; ++round) {
        juce::MemoryBlock damaged(chunk);
        for (int change = 0; change < 1 + round % 3; ++change)
            damaged[generator() % damaged.getSize()] = static_cast<char>(generator());
        load(*target, damaged);
        const Values now = valuesOf(*target);
        ASSERT_NO_THROW(target->getSupportedLayouts()->get(now.speakerSetup)) << now;
        ASSERT_NO_THROW(orvane::kestrum::core::Scene::get(now.scene)) << now;
        ASSERT_TRUE(now.ambience >= 0 && now.ambience <= 100) << now;
        ASSERT_TRUE(now.focus >= -100 && now.focus <= 100) << now;
        ASSERT_TRUE(now.headRotation >= -180 && now.headRotation <= 180) << now;
        ASSERT_TRUE(now.masterGain >= -96 && now.masterGain <= 24) << now;
    }
}

} // namespace
