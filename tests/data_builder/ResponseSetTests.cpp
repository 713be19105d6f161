// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/DataError.h"
#include "data/head/ResponseSet.h"
#include "data/sets/About.h"
#include "data/sets/FolderCheck.h"

#include "SyntheticHead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <string>
#include <utility>

using namespace orvane::kestrum::tools;
using ::testing::HasSubstr;

namespace {

/// A plausible set without any building: every response is a pulse of the synthetic head, scaled so that the
/// mean level is about 0 dB.
ResponseSet plausibleSet(const ResponseFile& file) {
    test::SyntheticHead head;
    head.sampleRate = file.sampleRate;
    head.tapCount = file.length;
    head.commonDelay = 25;
    head.halfDelay = 0.00027 * file.sampleRate;
    ResponseSet set{file, {}};
    for (const GridPlace& place : gridPlaces()) {
        set.responses.push_back({head.response(-1, place.direction()), head.response(1, place.direction())});
        for (Samples& ear : set.responses.back())
            for (double& sample : ear)
                sample *= 0.7;
    }
    return set;
}

std::string bytesOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void putBytes(const std::filesystem::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

class ResponseFiles : public ::testing::TestWithParam<ResponseFile> {
protected:
    test::TemporaryFolder folder;
};
INSTANTIATE_TEST_SUITE_P(AllThreeRates, ResponseFiles, ::testing::ValuesIn(responseFiles),
                         [](const auto& chosen) { return std::to_string(chosen.param.sampleRate); });

/// Sizes and offsets are those of the file format, written out by hand.
TEST_P(ResponseFiles, HaveTheExactHeaderThatThePluginReads) {
    writeResponseSet(plausibleSet(GetParam()), folder.path());
    const std::string bytes = bytesOf(folder.file(GetParam().name));
    const std::size_t dataSize = GetParam().sampleRate == 24000   ? 1412320
                                 : GetParam().sampleRate == 44100 ? 2582528
                                                                  : 2804464;
    ASSERT_EQ(bytes.size(), 44 + dataSize);
    EXPECT_EQ(bytes.substr(0, 4), "RIFF");
    EXPECT_EQ(bytes.substr(8, 8), "WAVEfmt ");
    EXPECT_EQ(bytes[20], 3); // float
    EXPECT_EQ(bytes[22], 2); // channels
    const auto number = [&](std::size_t offset) {
        std::uint32_t value = 0;
        for (std::size_t index = 4; index-- > 0;)
            value = value << 8U | static_cast<unsigned char>(bytes[offset + index]);
        return value;
    };
    EXPECT_EQ(number(4), 36 + dataSize);
    EXPECT_EQ(number(24), static_cast<std::uint32_t>(GetParam().sampleRate));
    EXPECT_EQ(bytes[34], 32); // bits
    EXPECT_EQ(bytes.find('d', 36), 36u);
    EXPECT_EQ(bytes.substr(36, 4), "data");
    EXPECT_EQ(number(40), dataSize);
}

/// Null test: reading gives the written samples, rounded to 32-bit float; left stands first in each frame.
TEST_P(ResponseFiles, ReadBackWhatWasWritten) {
    const ResponseSet written = plausibleSet(GetParam());
    writeResponseSet(written, folder.path());
    const ResponseSet read = readResponseSet(GetParam(), folder.path());
    for (std::size_t index = 0; index < responseCount; ++index)
        for (std::size_t ear = 0; ear < 2; ++ear)
            for (std::size_t frame = 0; frame < GetParam().length; ++frame)
                ASSERT_EQ(read.responses[index][ear][frame],
                          static_cast<double>(static_cast<float>(written.responses[index][ear][frame])));
    const std::string bytes = bytesOf(folder.file(GetParam().name));
    float second = 0;
    std::uint32_t bits = 0;
    for (std::size_t index = 4; index-- > 0;)
        bits = bits << 8U | static_cast<unsigned char>(bytes[44 + (20 * 2 + 1) * 4 + index]);
    second = std::bit_cast<float>(bits);
    EXPECT_EQ(static_cast<double>(second), read.responses[0][rightEar][20]);
}

TEST_P(ResponseFiles, AreFoundSoundByTheCheck) {
    writeResponseSet(plausibleSet(GetParam()), folder.path());
    const FileVerdict verdict = checkResponseFile(GetParam(), folder.path());
    EXPECT_TRUE(verdict.sound) << verdict.finding;
    EXPECT_THAT(verdict.finding, HasSubstr("2522 responses"));
}

TEST(Writing, IntoAFolderThatIsNoneFailsWithTheRemedy) {
    EXPECT_THROW(writeResponseSet(plausibleSet(responseFiles[2]), "/proc/none"), DataError);
}

/// One way to spoil a file, and a word of what the check says about it.
struct Damage {
    std::string name;
    std::function<void(std::string& bytes)> spoil;
    std::string finding;
};

void putFloat(std::string& bytes, std::size_t offset, float value) {
    const auto bits = std::bit_cast<std::uint32_t>(value);
    for (unsigned index = 0; index < 4; ++index)
        bytes[offset + index] = static_cast<char>((bits >> (8 * index)) & 0xffU);
}

float floatAt(const std::string& bytes, std::size_t offset) {
    std::uint32_t bits = 0;
    for (std::size_t index = 4; index-- > 0;)
        bits = bits << 8U | static_cast<unsigned char>(bytes[offset + index]);
    return std::bit_cast<float>(bits);
}

class DamagedFiles : public ::testing::TestWithParam<Damage> {};

TEST_P(DamagedFiles, AreFoundWithTheReasonAndARemedy) {
    const ResponseFile& file = responseFiles[0];
    const test::TemporaryFolder folder;
    writeResponseSet(plausibleSet(file), folder.path());
    std::string bytes = bytesOf(folder.file(file.name));
    GetParam().spoil(bytes);
    putBytes(folder.file(file.name), bytes);
    const FileVerdict verdict = checkResponseFile(file, folder.path());
    EXPECT_FALSE(verdict.sound);
    EXPECT_THAT(verdict.finding, HasSubstr(GetParam().finding));
    EXPECT_FALSE(verdict.remedy.empty());
}

constexpr std::size_t frames = 44; // offset of the first frame

INSTANTIATE_TEST_SUITE_P(
    EveryKindOfDamage, DamagedFiles,
    ::testing::Values(
        Damage{"Empty", [](std::string& bytes) { bytes.clear(); }, "cut off"},
        Damage{"CutInTheHeader", [](std::string& bytes) { bytes.resize(43); }, "cut off"},
        Damage{"NoRiff", [](std::string& bytes) { bytes[0] = 'X'; }, "no RIFF/WAVE"},
        Damage{"OneChannel", [](std::string& bytes) { bytes[22] = 1; }, "1 channels"},
        Damage{"WrongRate", [](std::string& bytes) { bytes[24] = 0; }, "instead of 44100"},
        Damage{"WrongBits", [](std::string& bytes) { bytes[34] = 24; }, "neither 32-bit float"},
        Damage{"IntegersOf32Bits", [](std::string& bytes) { bytes[20] = 1; }, "neither 32-bit float"},
        Damage{"MisleadingLetter", [](std::string& bytes) { bytes[37] = 'x'; }, "letter d"},
        Damage{"NoLetterAtAll",
               [](std::string& bytes) {
                   bytes.resize(36);
                   bytes.resize(2000, 'x');
               },
               "letter d"},
        Damage{"ShortData", [](std::string& bytes) { bytes.resize(bytes.size() - 1); }, "fewer samples"},
        Damage{"ShortAnnouncement", [](std::string& bytes) { bytes[42] = 0; }, "fewer samples"},
        Damage{"NotANumber",
               [](std::string& bytes) {
                   putFloat(bytes, frames + 800, std::numeric_limits<float>::quiet_NaN());
               },
               "no numbers"},
        Damage{"SilentEar",
               [](std::string& bytes) {
                   for (std::size_t frame = 0; frame < 128; ++frame)
                       putFloat(bytes, frames + (128 + frame) * 8, 0);
               },
               "silent at one ear"},
        Damage{"TooLoud",
               [](std::string& bytes) {
                   for (std::size_t offset = frames; offset < bytes.size(); offset += 4)
                       putFloat(bytes, offset, floatAt(bytes, offset) * 100);
               },
               "mean level"},
        Damage{"SwappedEars",
               [](std::string& bytes) {
                   for (std::size_t offset = frames; offset < bytes.size(); offset += 8)
                       for (std::size_t index = 0; index < 4; ++index)
                           std::swap(bytes[offset + index], bytes[offset + 4 + index]);
               },
               "swapped"}),
    [](const auto& chosen) { return chosen.param.name; });

/// Property: whatever single byte of the header is changed, the check ends with a verdict.
TEST(HostileHeaders, NeverCrashTheCheck) {
    const ResponseFile& file = responseFiles[2];
    const test::TemporaryFolder folder;
    writeResponseSet(plausibleSet(file), folder.path());
    const std::string whole = bytesOf(folder.file(file.name));
    for (std::size_t offset = 0; offset < 44; ++offset)
        for (const int value : {0x00, 0x7f, 0xff}) {
            std::string bytes = whole.substr(0, 4096);
            bytes[offset] = static_cast<char>(value);
            putBytes(folder.file(file.name), bytes);
            EXPECT_FALSE(checkResponseFile(file, folder.path()).sound);
        }
}

TEST(DataFolders, WithAFolderInAFilesPlaceLackThatFile) {
    const test::TemporaryFolder folder;
    std::filesystem::create_directory(folder.file(responseFiles[0].name));
    const FileVerdict verdict = checkResponseFile(responseFiles[0], folder.path());
    EXPECT_FALSE(verdict.sound);
    EXPECT_EQ(verdict.finding, "it is missing or may not be read");
}

TEST(DataFolders, AreCheckedFileByFile) {
    const test::TemporaryFolder folder;
    writeResponseSet(plausibleSet(responseFiles[0]), folder.path());
    const auto verdicts = checkDataFolder(folder.path());
    ASSERT_EQ(verdicts.size(), 7u);
    EXPECT_EQ(verdicts[0].name, "OVNdata120.dat");
    EXPECT_TRUE(verdicts[0].sound);
    EXPECT_FALSE(verdicts[1].sound);
    EXPECT_THAT(verdicts[1].finding, HasSubstr("missing"));
    EXPECT_EQ(verdicts[2].name, "OVNdata122.dat");
    EXPECT_EQ(verdicts[3].name, "OVNdata510.dat");
    EXPECT_EQ(verdicts[5].name, "OVNdata512.dat");
    EXPECT_EQ(verdicts[6].name, "about.json");
}

/// A set that another version of the program made has to be made anew, head or rooms.
TEST(DataFolders, SayByWhichMethodsTheyWereMade) {
    const test::TemporaryFolder folder;
    EXPECT_THAT(checkAbout(folder.path()).finding, HasSubstr("missing"));
    const auto verdictOf = [&folder](const std::string& text) {
        writeAbout(text, folder.path());
        return checkAbout(folder.path());
    };
    const std::string head = R"({"method": )" + std::to_string(methodNumber);
    EXPECT_FALSE(verdictOf("no text of this kind").sound);
    EXPECT_THAT(verdictOf(R"({"method": 1000000})").remedy, HasSubstr("kestrum data hrir"));
    EXPECT_THAT(verdictOf(head + "}").finding, HasSubstr("does not say how the rooms were made"));
    EXPECT_THAT(verdictOf(head + R"(, "rooms": {"method": 1000000}})").finding, HasSubstr("another version"));
    EXPECT_THAT(verdictOf(head + R"(, "rooms": {"method": 1000000}})").remedy,
                HasSubstr("kestrum data reverb"));
    EXPECT_TRUE(verdictOf(head + R"(, "rooms": {"method": 1000000}})").outdated);
    EXPECT_TRUE(verdictOf(R"({"method": 1000000, "rooms": {"method": 1}})").outdated);
    EXPECT_FALSE(verdictOf(head + "}").outdated) << "nobody knows how the rooms were made";
    writeAbout(head + "}", folder.path());
    EXPECT_TRUE(verdictOf(aboutWithReverb(folder.path())).sound);
}

/// "kestrum data reverb" refuses a head with headphones folded in, and makes no room of a user's own.
TEST(DataFolders, AreMendedByACommandThatDoesNotRefuseThem) {
    const test::TemporaryFolder folder;
    const auto remedyWith = [&](const std::string& about) {
        writeAbout(about, folder.path());
        return checkReverbFile(reverbFiles[0], folder.path()).remedy;
    };
    EXPECT_THAT(remedyWith(R"({"method": 1})"), HasSubstr("kestrum data reverb"));
    EXPECT_THAT(remedyWith(R"({"method": 1, "rooms": {"own": [{"room": 19}]}})"), HasSubstr("kestrum room"));
    const std::string folded = R"({"method": 1, "headphones": {"file": "eq.txt"}})";
    EXPECT_THAT(remedyWith(folded), HasSubstr("--headphone-eq"));
    EXPECT_THAT(checkResponseFile(responseFiles[0], folder.path()).remedy, HasSubstr("--headphone-eq"));
    EXPECT_THAT(checkAbout(folder.path()).remedy, HasSubstr("--headphone-eq"));
}

} // namespace
