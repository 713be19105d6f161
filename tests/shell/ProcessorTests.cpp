// SPDX-License-Identifier: GPL-3.0-or-later
// What the processor answers a host, apart from rendering. Expected values are the product's own published
// facts.
#include "TestDataFolder.h"
#include "TestProcessor.h"

#include "shell/ChannelConfigurations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using juce::AudioChannelSet;
using test::Processor;
using ::testing::ElementsAre;
using Layout = juce::AudioProcessor::BusesLayout;

std::unique_ptr<Processor> anyProcessor() {
    return test::makeProcessor([] { return std::string("/nonexistent"); });
}

Layout layout(const AudioChannelSet& input, const AudioChannelSet& output) {
    Layout buses;
    buses.inputBuses.add(input);
    buses.outputBuses.add(output);
    return buses;
}

TEST(ProcessorFacts, NameProgramsTailAndMidi) {
    const auto processor = anyProcessor();
    EXPECT_EQ(processor->getName(), juce::String("Orvane KESTRUM"));
    EXPECT_EQ(processor->getTailLengthSeconds(), 0.0); // although rooms have a tail
    EXPECT_FALSE(processor->acceptsMidi());
    EXPECT_FALSE(processor->producesMidi());
    EXPECT_FALSE(processor->isMidiEffect());
    EXPECT_TRUE(processor->hasEditor());
    EXPECT_EQ(processor->getBypassParameter(), nullptr);
    EXPECT_FALSE(processor->supportsDoublePrecisionProcessing());
}

TEST(ProcessorFacts, ThereIsOneProgramWithoutANameAndRenamingItDoesNothing) {
    const auto processor = anyProcessor();
    EXPECT_EQ(processor->getNumPrograms(), 1);
    EXPECT_EQ(processor->getCurrentProgram(), 0);
    processor->setCurrentProgram(3);
    processor->changeProgramName(0, "mine");
    EXPECT_EQ(processor->getCurrentProgram(), 0);
    EXPECT_TRUE(processor->getProgramName(0).isEmpty());
}

TEST(ProcessorFacts, TheProcessorAnswersForItself) {
    const auto processor = anyProcessor();
    EXPECT_EQ(processor->getAudioProcessor(), processor.get());
    EXPECT_NE(processor->getProcessorState(), nullptr);
    ASSERT_NE(processor->getParameterClient(), nullptr);
    int layouts = 0;
    processor->getSupportedLayouts()->forEach([&](const auto&) { ++layouts; });
    EXPECT_EQ(layouts, 32);
}

TEST(ProcessorFacts, TheRotationThatIsReadBackIsThatOfTheParameter) {
    const auto processor = anyProcessor();
    orvane::HeadRotationMatrix matrix{};
    processor->getHeadRotation(matrix);
    EXPECT_EQ(matrix, orvane::identityRotation);
    test::setParameter(*processor, "Head Rotation", 90.0f);
    processor->getHeadRotation(matrix);
    EXPECT_NEAR(matrix[2], 1.0f, 1e-6f); // sin 90 degrees
    EXPECT_NEAR(matrix[0], 0.0f, 1e-6f); // cos 90 degrees, of a pi rounded to float
}

TEST(ProcessorBuses, TheDefaultIsStereoInAndOut) {
    const auto processor = anyProcessor();
    EXPECT_EQ(processor->getBusCount(true), 1);
    EXPECT_EQ(processor->getBusCount(false), 1);
    EXPECT_EQ(processor->getNumberOfInputChannels(), 2);
    EXPECT_EQ(processor->getMainBusNumOutputChannels(), 2);
}

TEST(ProcessorBuses, EveryInputIsAcceptedWithAStereoOutput) {
    const auto processor = anyProcessor();
    for (int inputs = 1; inputs <= 16; ++inputs) {
        EXPECT_TRUE(processor->checkBusesLayoutSupported(
            layout(AudioChannelSet::discreteChannels(inputs), AudioChannelSet::stereo())))
            << inputs;
        EXPECT_TRUE(test::setInputs(*processor, inputs)) << inputs;
        EXPECT_EQ(processor->getNumberOfInputChannels(), inputs);
    }
    for (const auto& input :
         {AudioChannelSet::mono(), AudioChannelSet::stereo(), AudioChannelSet::create5point1(),
          AudioChannelSet::create7point1point4(), AudioChannelSet::quadraphonic()})
        EXPECT_TRUE(processor->checkBusesLayoutSupported(layout(input, AudioChannelSet::stereo())))
            << input.getDescription();
}

TEST(ProcessorBuses, EveryDeclaredPairIsAcceptedExactlyWhenItsOutputIsStereo) {
    const auto processor = anyProcessor();
    for (const auto& pair : orvane::kestrum::channelConfigurations)
        EXPECT_EQ(processor->checkBusesLayoutSupported(layout(AudioChannelSet::canonicalChannelSet(pair[0]),
                                                              AudioChannelSet::canonicalChannelSet(pair[1]))),
                  pair[1] == 2)
            << pair[0] << " in, " << pair[1] << " out";
}

TEST(ProcessorBuses, AnOutputThatIsNotStereoIsRefused) {
    const auto processor = anyProcessor();
    const auto surround = AudioChannelSet::create5point1();
    EXPECT_FALSE(processor->checkBusesLayoutSupported(layout(surround, surround)));
    EXPECT_FALSE(
        processor->checkBusesLayoutSupported(layout(AudioChannelSet::mono(), AudioChannelSet::mono())));
    EXPECT_FALSE(
        processor->checkBusesLayoutSupported(layout(surround, AudioChannelSet::discreteChannels(2))));
}

class Listener final : public orvane::kestrum::core::IBusesLayout::BusesLayoutListener {
public:
    void busesLayoutChanged(int inputChannelCount) override { seen.push_back(inputChannelCount); }
    std::vector<int> seen;
};

TEST(ProcessorBuses, ListenersHearTheInputChannelCountOfEachChangeOnce) {
    const auto processor = anyProcessor();
    Listener first;
    Listener second;
    processor->addBusesLayoutListener(&first);
    processor->addBusesLayoutListener(&first);
    processor->addBusesLayoutListener(&second);
    ASSERT_TRUE(test::setInputs(*processor, 6));
    EXPECT_THAT(first.seen, ElementsAre(6));
    EXPECT_THAT(second.seen, ElementsAre(6));
    processor->removeBusesLayoutListener(&first);
    ASSERT_TRUE(test::setInputs(*processor, 12));
    EXPECT_THAT(first.seen, ElementsAre(6));
    EXPECT_THAT(second.seen, ElementsAre(6, 12));
}

struct Latency {
    int blockSize;
    int samples;
};

class ReportedLatency : public ::testing::TestWithParam<Latency> {};

TEST_P(ReportedLatency, IsTheNextPowerOfTwoAlsoWhenThePreparationFails) {
    const auto processor = anyProcessor();
    EXPECT_EQ(processor->getLatencySamples(), 0);
    processor->prepareToPlay(22050.0, GetParam().blockSize); // no data for this rate
    EXPECT_TRUE(processor->hasError());
    EXPECT_EQ(processor->getLatencySamples(), GetParam().samples);
}
INSTANTIATE_TEST_SUITE_P(AroundPowersOfTwo, ReportedLatency,
                         ::testing::Values(Latency{1, 1}, Latency{2, 2}, Latency{3, 4}, Latency{63, 64},
                                           Latency{64, 64}, Latency{65, 128}, Latency{512, 512},
                                           Latency{513, 1024}, Latency{4096, 4096}));

TEST(ProcessorEditor, IsMadeWithoutAScreenAndLeavesTheSoundAlone) {
    const juce::ScopedJuceInitialiser_GUI framework;
    const auto processor = test::makeDryProcessor();
    processor->prepareToPlay(48000.0, 64);
    const std::unique_ptr<juce::AudioProcessorEditor> editor(processor->createEditor());
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(editor->getAudioProcessor(), processor.get());
    auto block = test::noiseBuffer(2, 64, 1);
    test::process(*processor, block);
    test::process(*processor, block);
    EXPECT_TRUE(test::isFinite(block));
    processor->editorBeingDeleted(editor.get());
}

} // namespace
