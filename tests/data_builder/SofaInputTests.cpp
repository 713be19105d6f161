// SPDX-License-Identifier: GPL-3.0-or-later
// Files that people have: every one is either read as what it is or refused with the reason.
#include "data/DataError.h"
#include "data/head/Ears.h"
#include "data/head/HrirBuilder.h"
#include "data/head/SofaReader.h"

#include "SofaFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <random>
#include <string>

using namespace orvane::kestrum::tools;
using ::testing::AllOf;
using ::testing::HasSubstr;

namespace {

/// The whole way of a file up to the long work.
std::string refusalOf(const std::string& file) {
    try {
        buildResponses(readSofa(file));
    } catch (const DataError& error) {
        return error.what();
    }
    return "accepted";
}

class SofaInput : public ::testing::Test {
protected:
    std::string written(const test::SofaText& sofa) const {
        test::writeSofa(sofa, folder.file("head.sofa"));
        return folder.file("head.sofa");
    }
    test::TemporaryFolder folder;
    const test::SyntheticHead head{.tapCount = 128};
};

/// Known of the head that the file is made of.
TEST_F(SofaInput, IsReadAsItWasWritten) {
    const auto directions = test::rings(45, 0);
    const MeasuredSet set = readSofa(written(test::sofaOf(head, directions)));
    ASSERT_EQ(set.measurements.size(), directions.size());
    EXPECT_EQ(set.sampleRate, 44100);
    for (std::size_t index = 0; index < directions.size(); ++index) {
        EXPECT_NEAR(set.measurements[index].direction.x, directions[index].x, 1e-4);
        EXPECT_NEAR(set.measurements[index].direction.z, directions[index].z, 1e-4);
        const Samples expected = head.response(-1, directions[index]);
        for (std::size_t tap = 0; tap < expected.size(); ++tap)
            ASSERT_NEAR(set.measurements[index].ears[0][tap], expected[tap], 1e-6);
    }
}

TEST_F(SofaInput, OfAnotherConventionIsRefusedByItsName) {
    test::SofaText sofa = test::sofaOf(head, test::rings(45, 0));
    sofa.convention = "GeneralFIR";
    EXPECT_THAT(refusalOf(written(sofa)),
                AllOf(HasSubstr("\"GeneralFIR\""),
                      HasSubstr("give a SOFA file of the convention SimpleFreeFieldHRIR")));
}

TEST_F(SofaInput, WithOneEarOrThreeIsRefused) {
    for (const std::size_t count : {1u, 3u}) {
        test::SofaText sofa = test::sofaOf(head, test::rings(90, 0));
        sofa.receiverCount = count;
        sofa.responses.assign(sofa.directions.size() * count, test::numbersOf(head.response(1, {1, 0, 0})));
        EXPECT_THAT(refusalOf(written(sofa)), HasSubstr("does not hold two ears")) << count;
    }
}

TEST_F(SofaInput, WithSamplesThatAreNoNumbersIsRefused) {
    for (const std::string wrong : {"NaN", "Infinity"}) {
        test::SofaText sofa = test::sofaOf(head, test::rings(45, 0));
        sofa.responses[5].replace(0, sofa.responses[5].find(','), wrong);
        EXPECT_THAT(refusalOf(written(sofa)), HasSubstr("samples that are no numbers: the file is damaged"))
            << wrong;
    }
}

TEST_F(SofaInput, OfOneDirectionIsRefused) {
    for (const int azimuth : {0, 90}) {
        const auto one = test::sofaOf(head, {directionFrom(azimuth, 0)});
        EXPECT_THAT(refusalOf(written(one)), HasSubstr("The set ")) << azimuth;
    }
}

TEST_F(SofaInput, OfSilenceIsRefused) {
    test::SofaText sofa = test::sofaOf(head, test::rings(45, 0));
    sofa.responses.assign(sofa.responses.size(), test::numbersOf(Samples(head.tapCount)));
    EXPECT_THAT(refusalOf(written(sofa)), HasSubstr("silent response"));
}

/// Null test: a file whose receivers stand the other way round is the same head.
TEST_F(SofaInput, WithSwappedEarsIsPutRightAndSaidToBe) {
    test::SofaText sofa = test::sofaOf(head, test::rings(45, -45));
    MeasuredSet straight = readSofa(written(sofa));
    for (std::size_t index = 0; index < sofa.responses.size(); index += 2)
        std::swap(sofa.responses[index], sofa.responses[index + 1]);
    MeasuredSet swapped = readSofa(written(sofa));
    EXPECT_FALSE(assignEars(straight).swapped);
    EXPECT_TRUE(assignEars(swapped).swapped);
    for (std::size_t index = 0; index < straight.measurements.size(); ++index)
        EXPECT_EQ(straight.measurements[index].ears, swapped.measurements[index].ears);
}

/// The level says left, the time says right: nobody can tell.
TEST_F(SofaInput, WhoseEarsContradictThemselvesIsRefused) {
    test::SyntheticHead odd = head;
    odd.sideGainDb = -6;
    EXPECT_THAT(refusalOf(written(test::sofaOf(odd, test::rings(45, 0)))),
                HasSubstr("do not say which ear is the left one"));
}

/// Property: a file cut anywhere is refused with a sentence, not believed and not crashed on.
TEST_F(SofaInput, CutShortAnywhereIsRefused) {
    const std::string whole = test::readBytes(written(test::sofaOf(head, test::rings(45, 0))));
    std::mt19937 random(1);
    std::uniform_int_distribution<std::size_t> size(0, whole.size() - 1);
    for (int trial = 0; trial < 60; ++trial) {
        const std::string part = whole.substr(0, size(random));
        test::writeBytes(folder.file("cut.sofa"), part);
        EXPECT_THROW(readSofa(folder.file("cut.sofa")), DataError) << part.size() << " of " << whole.size();
    }
}

/// Found by fuzzing, as are the next two: the library walks in circles there.
TEST_F(SofaInput, ThatItsReaderWouldNeverComeBackFromIsRefused) {
    try {
        readSofa(KESTRUM_FUZZ_FINDINGS "/sofa/endless-walk.sofa", std::chrono::milliseconds(500));
        FAIL() << "accepted";
    } catch (const DataError& error) {
        EXPECT_THAT(error.what(), HasSubstr("keeps its reader busy for ever): give an uncut file"));
    }
}

TEST_F(SofaInput, WithAPositionThatIsNoNumberIsRefused) {
    EXPECT_THAT(refusalOf(KESTRUM_FUZZ_FINDINGS "/sofa/position-that-is-no-number.sofa"),
                HasSubstr("source positions that are no numbers: the file is damaged"));
}

/// Each response is made longer by the longest delay of all: some kilobytes would become gigabytes.
TEST_F(SofaInput, WithDelaysOfSecondsOrOfMoreThanThereIsMemoryForIsRefused) {
    test::SofaText sofa = test::sofaOf(head, test::rings(20, -20));
    for (const double none : {44100.0, -1.0, 1e30}) {
        sofa.delaySamples = none;
        EXPECT_THAT(refusalOf(written(sofa)), HasSubstr("holds a delay that is none: the file is damaged"))
            << none;
    }
    sofa.delaySamples = 500;
    EXPECT_EQ(readSofa(written(sofa)).measurements.size(), sofa.directions.size());
    sofa.sampleRate = 768000;
    sofa.delaySamples = 1.01 * (1 << 26) / static_cast<double>(sofa.directions.size());
    EXPECT_THAT(refusalOf(written(sofa)),
                HasSubstr("more than 128 million samples once its delays are put back: give a smaller set"));
}

TEST_F(SofaInput, WhoseTextsSteerATerminalIsToldOfWithoutThem) {
    EXPECT_THAT(refusalOf(KESTRUM_FUZZ_FINDINGS "/sofa/convention-that-steers-the-terminal.sofa"),
                HasSubstr("holds \" [31mred  \": give a SOFA file"));
}

TEST_F(SofaInput, ThatIsNoPlainFileIsRefused) {
    for (const char* path : {"/dev/zero", "/tmp"})
        EXPECT_THAT(refusalOf(path), HasSubstr("is no plain file: name a SOFA file with --sofa")) << path;
}

} // namespace
