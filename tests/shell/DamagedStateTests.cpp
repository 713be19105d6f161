// SPDX-License-Identifier: GPL-3.0-or-later
// What comes of chunks that a disk, another program or somebody's hand has damaged: nothing, or a tree as it stands. Each is
// read from memory of its very size, so that a sanitizer sees the first byte too many.
#include "StateValues.h"

#include "parameters/core/Scene.h"
#include "parameters/core/SelectorId.h"
#include "shell/StateChunk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using orvane::kestrum::isReadableState;
using test::chunkFrom;
using test::chunkOf;
using test::defaults;
using test::load;
using test::Processor;
using test::processorWith;
using test::setValues;
using test::unusual;
using test::Values;
using test::valuesOf;

constexpr std::string_view whole =
    R"(<ORVANEKESTRUM><SpeakerSetup Value="1253398816"/><Scene Value="-1367175463"/><Ambience Value="83.0"/>)"
    R"(<HeadRotation Value="-179.0"/><Focus Value="-41.0"/><MasterGain Value="24.0"/></ORVANEKESTRUM>)"; // unusual

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

bool readable(const juce::MemoryBlock& chunk) {
    return isReadableState({static_cast<const unsigned char*>(chunk.getData()), chunk.getSize()});
}

/// `whole` with `inserted` at a place of the seed's choice.
std::string withInserted(std::string_view inserted, std::mt19937& generator) {
    std::string text(whole);
    return text.insert(generator() % (text.size() + 1), inserted);
}

TEST(DamagedState, WithoutOneFaultIsTakenOver) { // else the tests below would show nothing
    const auto processor = processorWith(defaults);
    load(*processor, chunkFrom(std::string(whole)));
    EXPECT_EQ(valuesOf(*processor), unusual);
}

/// RFC 3629: what each of its rules shuts out, and the neighbours that it lets in.
TEST(TextOfAState, IsUtf8ToTheLastByte) {
    const auto accepted = [](std::string_view bytes) {
        return readable(chunkFrom("<A " + std::string(bytes) + ">"));
    };
    for (const std::string_view good :
         {"A", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80", "\xEF\xBF\xBF",
          "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"})
        EXPECT_TRUE(accepted(good)) << testing::PrintToString(good);
    for (const std::string_view bad :
         {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xED\xBF\xBF",
          "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "\xFE", "\xC2", "\xC2 ",
          "\xE1\x80", "\xE1\x80 ", "\xF1\x80\x80", "\xF1\x80\x80 ", "\xF1 \x80\x80"})
        EXPECT_FALSE(accepted(bad)) << testing::PrintToString(bad);
}

TEST(TextOfAState, NamesNoEntityThatNeedsADeclaration) {
    for (const std::string good :
         {"&amp;", "&quot;", "&apos;", "&lt;", "&gt;", "&#65;", "&#x41;", "&lt;&gt;"})
        EXPECT_TRUE(readable(chunkFrom("<A B=\"" + good + "\"/>"))) << good;
    for (const std::string bad : {"&", "&;", "&a;", "&nbsp;", "&amp", "&<A>;", "&lt;&gt", "&amp;&a;"})
        EXPECT_FALSE(readable(chunkFrom("<A B=\"" + bad + "\"/>"))) << bad;
}

TEST(TextOfAState, HasTheLengthThatItsHeaderTells) {
    const auto chunk = chunkFrom(std::string(whole));
    ASSERT_TRUE(readable(chunk));
    for (const std::uint32_t told : {std::uint32_t{0}, static_cast<std::uint32_t>(chunk.getSize()) - 7,
                                     0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        juce::MemoryBlock lying(chunk);
        for (std::size_t index = 0; index < 4; ++index)
            lying[4 + index] = static_cast<char>(told >> (8 * index) & 0xFF);
        EXPECT_FALSE(readable(lying)) << told;
    }
    EXPECT_FALSE(isReadableState({}));
    EXPECT_TRUE(readable(chunkFrom("<A>" + std::string(65533, ' '))));
    EXPECT_FALSE(readable(chunkFrom("<A>" + std::string(65534, ' '))));
}

struct Fault {
    std::string name;
    std::function<juce::MemoryBlock(std::mt19937&)> damage;

    friend void PrintTo(const Fault& fault, std::ostream* stream) { *stream << fault.name; }
};

class FaultyState : public ::testing::TestWithParam<Fault> {};

/// Neither what the chunks hold nor what an instance begins with.
const Values heldBefore{
    orvane::kestrum::core::selectorId("Quad"), orvane::kestrum::core::selectorId("Car"), 12, 34, 56, -7};

/// Each of these cannot be read as a tree of ours, by what was done to it.
TEST_P(FaultyState, ChangesNothing) {
    std::mt19937 generator(5);
    const auto processor = processorWith(heldBefore);
    ASSERT_EQ(valuesOf(*processor), heldBefore);
    constexpr int rounds = 1000;
    for (int round = 0; round < rounds; ++round) {
        const juce::MemoryBlock chunk = GetParam().damage(generator);
        load(*processor, chunk);
        ASSERT_EQ(valuesOf(*processor), heldBefore) << round << '\n'
                                                    << std::string_view(chunk.begin(), chunk.getSize());
    }
    std::cout << "figure: " << rounds << " damaged states of a kind, none changed a value\n";
}

juce::MemoryBlock shortened(std::mt19937& generator) {
    auto chunk = chunkFrom(std::string(whole));
    chunk.setSize(generator() % (whole.size() + 8));
    return chunk;
}

/// The header tells the length that is there, so only the missing end of the tree gives it away.
juce::MemoryBlock brokenOff(std::mt19937& generator) {
    return chunkFrom(std::string(whole.substr(0, generator() % whole.size())));
}

juce::MemoryBlock notUtf8(std::mt19937& generator) {
    constexpr std::string_view faults[]{"\xFF",     "\xC3",         "\xE2\x82", "\xF0\x9F\x8E",
                                        "\xC0\xAF", "\xED\xA0\x80", "\x80"};
    // A letter behind it, as an end that breaks off is found by its length already.
    return chunkFrom(withInserted(std::string(faults[generator() % std::size(faults)]) + "a", generator));
}

juce::MemoryBlock foreignRoot(std::mt19937& generator) {
    std::string text(whole);
    const std::size_t letter = 1 + generator() % 13;
    text[letter] = text[letter] == 'X' ? 'Y' : 'X';
    return chunkFrom(text);
}

juce::MemoryBlock foreignMark(std::mt19937& generator) {
    auto chunk = chunkFrom(std::string(whole));
    chunk[generator() % 4] ^= static_cast<char>(1 + generator() % 255);
    return chunk;
}

/// Deeper than a stack would bear.
juce::MemoryBlock nested(std::mt19937& generator) {
    std::string text = "<ORVANEKESTRUM>";
    const std::size_t depth = 256 + generator() % 20000;
    for (std::size_t level = 0; level < depth; ++level)
        text += "<a>";
    return chunkFrom(text + "<Ambience Value=\"7\"/></ORVANEKESTRUM>");
}

/// An entity that is made of itself.
juce::MemoryBlock entities(std::mt19937& generator) {
    return chunkFrom("<!DOCTYPE a [<!ENTITY a \"&a;&a;\"><!ENTITY b \"&a;\">]>" +
                     withInserted(generator() % 2 == 0 ? "&a;" : "&b;", generator));
}

/// The framework reads on behind the end of the text.
juce::MemoryBlock openReference(std::mt19937& generator) {
    constexpr std::string_view faults[]{"&#",   "&#x", "&#x4", "&#4", "&#x4G;",  "&#;",
                                        "&#x;", "&#X", "&",    "&am", "&<a><b;", "&name;"};
    std::string text(whole.substr(0, generator() % whole.size()));
    return chunkFrom(text + std::string(faults[generator() % std::size(faults)]));
}

/// To the framework's reader the text ends there: behind the root's name that is an empty tree of ours.
juce::MemoryBlock zeroWithin(std::mt19937& generator) {
    std::string text(whole);
    text[generator() % text.size()] = '\0';
    return chunkFrom(text);
}

juce::MemoryBlock randomBytes(std::mt19937& generator) {
    juce::MemoryBlock chunk(generator() % 300);
    for (char& byte : chunk)
        byte = static_cast<char>(generator());
    return chunk;
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, FaultyState,
                         ::testing::Values(Fault{"Shortened", shortened}, Fault{"BrokenOff", brokenOff},
                                           Fault{"NotUtf8", notUtf8}, Fault{"ForeignRoot", foreignRoot},
                                           Fault{"ForeignMark", foreignMark}, Fault{"Nested", nested},
                                           Fault{"Entities", entities}, Fault{"OpenReference", openReference},
                                           Fault{"ZeroWithin", zeroWithin},
                                           Fault{"RandomBytes", randomBytes}),
                         [](const auto& fault) { return fault.param.name; });

void expectPossible(Processor& processor) {
    const Values now = valuesOf(processor);
    ASSERT_NO_THROW(processor.getSupportedLayouts()->get(now.speakerSetup)) << now;
    ASSERT_NO_THROW(orvane::kestrum::core::Scene::get(now.scene)) << now;
    ASSERT_TRUE(now.ambience >= 0 && now.ambience <= 100) << now;
    ASSERT_TRUE(now.focus >= -100 && now.focus <= 100) << now;
    ASSERT_TRUE(now.headRotation >= -180 && now.headRotation <= 180) << now;
    ASSERT_TRUE(now.masterGain >= -96 && now.masterGain <= 24) << now;
}

/// The number that stands in a chunk's text for `child`, within its range.
double numberIn(const std::string& text, const std::string& child, double least, double most) {
    const std::size_t at = text.find("<" + child + " Value=\"");
    return std::clamp(std::strtod(text.c_str() + at + child.size() + 9, nullptr), least, most);
}

/// Reference: the C library's reading of the same text. What is no digit is not touched, so it is a sound tree of ours.
TEST(DamagedState, WithOtherDigitsIsReadAsItStands) {
    std::mt19937 generator(9);
    const auto processor = processorWith(heldBefore);
    for (int round = 0; round < 1000; ++round) {
        std::string text(whole);
        const std::size_t numbers = text.find("<Ambience");
        for (std::size_t at = numbers; at < text.size(); ++at)
            if (std::isdigit(static_cast<unsigned char>(text[at])) != 0 && generator() % 3 == 0)
                text[at] = static_cast<char>('0' + generator() % 10);
        load(*processor, chunkFrom(text));
        const Values now = valuesOf(*processor);
        ASSERT_EQ(now.speakerSetup, unusual.speakerSetup);
        ASSERT_EQ(now.scene, unusual.scene);
        ASSERT_NEAR(now.ambience, numberIn(text, "Ambience", 0, 100), 0.501) << text; // half a step
        ASSERT_NEAR(now.focus, numberIn(text, "Focus", -100, 100), 0.501) << text;
        ASSERT_NEAR(now.headRotation, numberIn(text, "HeadRotation", -180, 180), 0.501) << text;
        ASSERT_NEAR(now.masterGain, numberIn(text, "MasterGain", -96, 24), 0.0501) << text;
    }
}

/// Property: whatever single bytes of a chunk are changed, every value stays one that could have been set by hand, and what
/// is saved then comes back.
TEST(DamagedState, ChangedBytesNeverBringInAnImpossibleValue) {
    std::mt19937 generator(4);
    const auto source = processorWith(unusual);
    const auto chunk = chunkOf(*source);
    const auto target = processorWith(defaults);
    constexpr int rounds = 3000;
    for (int round = 0; round < rounds; ++round) {
        juce::MemoryBlock damaged(chunk);
        for (int change = 0; change < 1 + round % 3; ++change)
            damaged[generator() % damaged.getSize()] = static_cast<char>(generator());
        load(*target, damaged);
        ASSERT_NO_FATAL_FAILURE(expectPossible(*target)) << round;
        const Values held = valuesOf(*target);
        load(*target, chunkOf(*target));
        ASSERT_EQ(valuesOf(*target), held) << round;
    }
    std::cout << "figure: " << rounds << " states with changed bytes, no impossible value\n";
}

} // namespace
