// SPDX-License-Identifier: GPL-3.0-or-later
// Expected bytes are written out by hand from the file format's public description.
#include "host/PresetFile.h"

#include "host/HostError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

using orvane::kestrum::host::formatPreset;
using orvane::kestrum::host::HostError;
using orvane::kestrum::host::parsePreset;
using orvane::kestrum::host::Preset;
using orvane::kestrum::host::readPreset;
using orvane::kestrum::host::writePreset;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using Bytes = std::vector<std::byte>;

const std::string classId = "0123456789ABCDEF0123456789ABCDEF";

Bytes bytesOf(std::string_view text) {
    const auto view = std::as_bytes(std::span(text));
    return {view.begin(), view.end()};
}

std::string littleEndian(std::uint64_t value, std::size_t length) {
    std::string text;
    for (std::size_t index = 0; index < length; ++index)
        text.push_back(static_cast<char>((value >> (8 * index)) & 0xFF));
    return text;
}

std::string header(std::uint64_t listOffset) {
    return "VST3" + littleEndian(1, 4) + classId + littleEndian(listOffset, 8);
}

std::string entry(const std::string& mark, std::uint64_t offset, std::uint64_t size) {
    return mark + littleEndian(offset, 8) + littleEndian(size, 8);
}

std::string messageOf(std::string_view file) {
    try {
        parsePreset(bytesOf(file));
        return "accepted";
    } catch (const HostError& error) {
        return error.what();
    }
}

TEST(PresetFile, AStateWithoutEditingHalfIsOneChunkBehindTheHeader) {
    const Preset preset{classId, {bytesOf("state"), {}}};
    EXPECT_EQ(formatPreset(preset),
              bytesOf(header(53) + "state" + "List" + littleEndian(1, 4) + entry("Comp", 48, 5)));
}

TEST(PresetFile, BothHalvesAreTwoChunksInTheirOrder) {
    const Preset preset{classId, {bytesOf("state"), bytesOf("view")}};
    EXPECT_EQ(formatPreset(preset), bytesOf(header(57) + "stateview" + "List" + littleEndian(2, 4) +
                                            entry("Comp", 48, 5) + entry("Cont", 53, 4)));
}

TEST(PresetFile, ReadingGivesBackWhatWasFormatted) {
    const Preset preset = parsePreset(formatPreset({classId, {bytesOf("state"), bytesOf("view")}}));
    EXPECT_EQ(preset.classId, classId);
    EXPECT_EQ(preset.state.component, bytesOf("state"));
    EXPECT_EQ(preset.state.controller, bytesOf("view"));
}

TEST(PresetFile, UnknownChunksAndAnyOrderAreAccepted) {
    const std::string file = header(48 + 9) + "<xml/>abc" + "List" + littleEndian(2, 4) +
                             entry("Info", 48, 6) + entry("Comp", 54, 3);
    const Preset preset = parsePreset(bytesOf(file));
    EXPECT_EQ(preset.state.component, bytesOf("abc"));
    EXPECT_THAT(preset.state.controller, IsEmpty());
}

TEST(PresetFile, AnotherKindOfFileIsRefused) {
    EXPECT_EQ(messageOf(""), "is no .vstpreset file");
    EXPECT_EQ(messageOf("VST3"), "is no .vstpreset file");
    EXPECT_EQ(messageOf("RIFF" + header(48).substr(4)), "is no .vstpreset file");
}

TEST(PresetFile, AListOrChunkOutsideTheFileIsRefused) {
    const std::string outside = "is a damaged preset (it points outside itself)";
    EXPECT_EQ(messageOf(header(48)), outside);
    EXPECT_EQ(messageOf(header(~std::uint64_t{0})), outside);
    EXPECT_EQ(messageOf(header(48) + "List" + littleEndian(1, 4) + entry("Comp", 48, 1000)), outside);
    // offset plus size wrap around to a small number
    EXPECT_EQ(messageOf(header(48) + "List" + littleEndian(1, 4) + entry("Comp", ~std::uint64_t{0}, 2)),
              outside);
    // more entries promised than there are
    EXPECT_EQ(messageOf(header(48) + "List" + littleEndian(0xFFFFFFFF, 4) + entry("Comp", 48, 1)), outside);
}

TEST(PresetFile, AFileWithoutTheListsMarkOrWithoutAStateIsRefused) {
    EXPECT_EQ(messageOf(header(48) + "Lost" + littleEndian(0, 4)),
              "is a damaged preset (its list of chunks is missing)");
    EXPECT_EQ(messageOf(header(48) + "List" + littleEndian(0, 4)),
              "is a damaged preset (it holds no state of the plug-in)");
}

/// Property: whatever a single changed or missing byte does, the reader answers with a preset or with
/// HostError.
TEST(PresetFile, DamagedFilesNeverDoMoreThanThrow) {
    const Bytes whole = formatPreset({classId, {bytesOf(std::string(100, 'x')), bytesOf("view")}});
    std::mt19937 random(7);
    int refused = 0;
    for (int round = 0; round < 20000; ++round) {
        Bytes file = whole;
        file[random() % file.size()] = static_cast<std::byte>(random() & 0xFF);
        file.resize(file.size() - (round % 3 == 0 ? random() % file.size() : 0));
        try {
            EXPECT_LE(parsePreset(file).state.component.size(), whole.size());
        } catch (const HostError&) {
            ++refused;
        }
    }
    EXPECT_GT(refused, 6000); // every third file is cut short, and a cut file has lost its list
}

TEST(PresetFile, AFileOnDiskComesBackAndAMissingOneIsNamed) {
    const auto path = std::filesystem::temp_directory_path() / "kestrum_preset_file_test.vstpreset";
    writePreset(path, {classId, {bytesOf("state"), {}}});
    EXPECT_EQ(readPreset(path).state.component, bytesOf("state"));
    std::filesystem::remove(path);
    try {
        readPreset(path);
        FAIL() << "expected an exception";
    } catch (const HostError& error) {
        EXPECT_THAT(error.what(), HasSubstr("kestrum_preset_file_test.vstpreset\" cannot be opened: name a "
                                            ".vstpreset file that you may read."));
    }
    EXPECT_THROW(readPreset(std::filesystem::temp_directory_path()), HostError); // a folder opens, too
    EXPECT_THROW(writePreset("/nonexistent/folder/x.vstpreset", {classId, {}}), HostError);
}

TEST(PresetFile, ADamagedFileOnDiskIsNamedWithTheRemedy) {
    const auto path = std::filesystem::temp_directory_path() / "kestrum_damaged_preset_test.vstpreset";
    std::ofstream(path) << "hello";
    try {
        readPreset(path);
        ADD_FAILURE() << "expected an exception";
    } catch (const HostError& error) {
        EXPECT_EQ(error.what(), "\"" + path.string() +
                                    "\" is no .vstpreset file: name one that a host or kestrum has saved.");
    }
    std::filesystem::remove(path);
}

} // namespace
