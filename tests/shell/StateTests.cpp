// SPDX-License-Identifier: GPL-3.0-or-later
// What a host stores with its session, and what comes of foreign and old chunks.
#include "StateValues.h"

#include "parameters/core/Scene.h"
#include "parameters/core/SelectorId.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <iostream>
#include <random>
#include <string>

#include <sys/resource.h>

namespace {

using test::chunkFrom;
using test::chunkOf;
using test::defaults;
using test::load;
using test::processorWith;
using test::setValues;
using test::unusual;
using test::Values;
using test::valuesOf;

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

/// Property over seeded values, each first brought onto its grid by being set.
TEST(StateChunk, WhatIsSavedComesBackAndIsSavedAgainByteForByte) {
    std::mt19937 generator(11);
    const auto scenes = orvane::kestrum::core::Scene::identifiers();
    const auto source = processorWith(defaults);
    const auto target = processorWith(unusual);
    std::vector<std::uint32_t> layouts;
    source->getSupportedLayouts()->forEach([&](const auto& layout) { layouts.push_back(layout.id); });
    constexpr int rounds = 1000;
    for (int round = 0; round < rounds; ++round) {
        setValues(*source,
                  {layouts[generator() % layouts.size()], scenes[generator() % scenes.size()],
                   static_cast<float>(generator() % 101), static_cast<float>(generator() % 201) - 100.0f,
                   static_cast<float>(generator() % 361) - 180.0f,
                   -96.0f + 0.1f * static_cast<float>(generator() % 1201)});
        const auto chunk = chunkOf(*source);
        load(*target, chunk);
        ASSERT_EQ(valuesOf(*target), valuesOf(*source)) << round;
        ASSERT_EQ(chunkOf(*target), chunk) << round;
    }
    std::cout << "figure: " << rounds << " states, equal byte for byte\n";
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
        <Ambience Value="nan"/><HeadRotation Value="inf"/><Focus Value="-inf"/><MasterGain Value="nan"/>
        </ORVANEKESTRUM>)"));
    EXPECT_EQ(valuesOf(*processor), unusual);
}

TEST(ForeignState, NumbersWithEndlessExponentsAreIgnoredAndLongOnesRead) {
    const auto processor = processorWith(unusual);
    load(*processor,
         chunkFrom(R"(<ORVANEKESTRUM><SpeakerSetup Value="1253398816"/><Scene Value="-1367175463"/>
        <Ambience Value="0e3002222222"/><HeadRotation Value="1E+99999999999999"/><Focus Value="x e-2147483648"/>
        <MasterGain Value="5e-999999999"/></ORVANEKESTRUM>)"));
    Values expected = unusual;
    expected.masterGain = 0.0f;
    EXPECT_EQ(valuesOf(*processor), expected);
}

/// To the framework, such an attribute is a count of bytes and the bytes.
TEST(ForeignState, AnAttributeThatTellsOfGigabytesIsTakenForNoValueAndTakesNoMemory) {
    const auto mostMegabytesSoFar = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss / 1024;
    };
    const auto processor = processorWith(unusual);
    const auto before = mostMegabytesSoFar();
    for (const std::string count : {"1000000000", "2147483647", "99999999999", "-179"})
        load(*processor,
             chunkFrom(R"(<ORVANEKESTRUM><SpeakerSetup Value="1253398816"/><Scene Value="-1367175463"/>
            <Ambience base64:Value=")" +
                       count + R"(.4"/><HeadRotation Value="-179"/><Focus Value="-41"/>
            <MasterGain Value="24"/></ORVANEKESTRUM>)"));
    EXPECT_LT(mostMegabytesSoFar() - before, 100);
    Values expected = unusual;
    expected.ambience = 0.0f;
    EXPECT_EQ(valuesOf(*processor), expected);
}

TEST(ForeignState, NumbersBeyondTheRangeAreBroughtIntoIt) {
    const auto processor = processorWith(defaults);
    load(*processor, chunkFrom(R"(<ORVANEKESTRUM><Ambience Value="101"/><HeadRotation Value="-1000"/>
        <Focus Value="3.4"/><MasterGain Value="1e300"/></ORVANEKESTRUM>)"));
    EXPECT_EQ(valuesOf(*processor), (Values{defaults.speakerSetup, defaults.scene, 100, 3, -180, 24}));
}

/// Who listens to a value pushes it on to the engines: it has to be in its range before, not only once the host's parameter
/// has limited it.
TEST(ForeignState, NobodyIsToldOfANumberBeyondTheRange) {
    using orvane::kestrum::core::ISliderValue;
    class Listener final : public ISliderValue::Listener {
    public:
        explicit Listener(ISliderValue& heard) : value(heard) { value.addListener(this); }
        Listener(const Listener&) = delete;
        Listener& operator=(const Listener&) = delete;
        ~Listener() override { value.removeListener(this); }
        void valueChanged() override { seen.push_back(value.getValue()); }
        std::vector<float> seen;

    private:
        ISliderValue& value;
    };
    const auto processor = processorWith(defaults);
    auto& state = *processor->getProcessorState();
    const Listener ambience(*state.getAmbience());
    const Listener focus(*state.getFocus());
    const Listener rotation(*state.getHeadRotation());
    const Listener gain(*state.getMasterGain());
    load(*processor, chunkFrom(R"(<ORVANEKESTRUM><Ambience Value="-7"/><HeadRotation Value="181"/>
        <Focus Value="-1e9"/><MasterGain Value="-1e300"/></ORVANEKESTRUM>)"));
    EXPECT_THAT(ambience.seen, ::testing::Each(0));
    EXPECT_THAT(focus.seen, ::testing::Each(-100));
    EXPECT_THAT(rotation.seen, ::testing::Each(180));
    EXPECT_THAT(gain.seen, ::testing::Each(-96));
    EXPECT_FALSE(ambience.seen.empty() || focus.seen.empty() || rotation.seen.empty() || gain.seen.empty());
}

TEST(ForeignState, UnknownChildrenAndPropertiesAreLeftOut) {
    const auto processor = processorWith(defaults);
    load(*processor,
         chunkFrom(R"(<ORVANEKESTRUM Version="9"><Width Value="3"/><Ambience Value="7" Extra="1"/>text
        <Focus Value="8"><Deep/></Focus></ORVANEKESTRUM>)"));
    EXPECT_EQ(valuesOf(*processor), (Values{defaults.speakerSetup, defaults.scene, 7, 8, 0, 0}));
}

} // namespace
