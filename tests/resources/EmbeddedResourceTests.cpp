// SPDX-License-Identifier: GPL-3.0-or-later
#include "Resources.h"
#include "pictures/PngFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <span>
#include <string>

namespace {

using orvane::kestrum::pictures::Bytes;
using orvane::kestrum::pictures::readPng;

const std::filesystem::path folder = KESTRUM_RESOURCES;

/// Embedded bytes by the name of their file.
std::map<std::string, std::span<const std::uint8_t>> embedded() {
    std::map<std::string, std::span<const std::uint8_t>> result;
    for (int i = 0; i < resources::namedResourceListSize; ++i) {
        int size = 0;
        const char* const data = resources::getNamedResource(resources::namedResourceList[i], size);
        result[resources::originalFilenames[i]] = {reinterpret_cast<const std::uint8_t*>(data),
                                                   static_cast<std::size_t>(size)};
    }
    return result;
}

/// Pictures and fonts of the folder, by name.
std::map<std::string, std::filesystem::path> present() {
    std::map<std::string, std::filesystem::path> result;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.path().extension() == ".png" || entry.path().extension() == ".ttf")
            result[entry.path().filename().string()] = entry.path();
    return result;
}

TEST(TheEmbeddedResources, AreTheFilesOfTheFolderByteForByte) {
    const auto inside = embedded();
    const auto outside = present();
    EXPECT_EQ(inside.size(), outside.size());
    for (const auto& [name, path] : outside) {
        ASSERT_TRUE(inside.contains(name)) << name << " is not named in resources/CMakeLists.txt";
        std::ifstream stream(path, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
        EXPECT_TRUE(std::ranges::equal(bytes, inside.at(name), [](char a, std::uint8_t b) {
            return static_cast<std::uint8_t>(a) == b;
        })) << name;
    }
}

// The sizes that the editor's code relies on: twice the size at which each is shown.
TEST(TheEmbeddedPictures, DecodeToExactlyTheirSizes) {
    std::map<std::string, std::pair<int, int>> sizes{{"arrow_left.png", {48, 48}},
                                                     {"arrow_right.png", {48, 48}},
                                                     {"blurred.png", {2160, 1272}},
                                                     {"combo_arrow_24.png", {24, 36}},
                                                     {"combo_arrow_36.png", {36, 48}},
                                                     {"normal.png", {2160, 1272}},
                                                     {"rotary_big_pointer.png", {216, 216}},
                                                     {"rotary_big_ring.png", {216, 216}},
                                                     {"rotary_full_circle_ring.png", {168, 168}},
                                                     {"rotary_pointer.png", {144, 144}},
                                                     {"rotary_ring.png", {144, 144}},
                                                     {"rotary_small_pointer.png", {72, 72}},
                                                     {"rotary_small_ring.png", {72, 72}},
                                                     {"slider_centered_thumb.png", {36, 36}},
                                                     {"slider_centered_track.png", {204, 36}},
                                                     {"slider_long_centered_track.png", {516, 36}},
                                                     {"slider_long_track.png", {516, 36}},
                                                     {"slider_middle_track.png", {312, 48}},
                                                     {"slider_thumb.png", {48, 48}},
                                                     {"slider_track.png", {216, 36}},
                                                     {"slider_vertical_micro_thumb.png", {60, 60}},
                                                     {"slider_vertical_micro_track.png", {36, 448}},
                                                     {"slider_vertical_track.png", {36, 516}},
                                                     {"toolbar_help.png", {48, 48}},
                                                     {"toolbar_help_down.png", {48, 48}},
                                                     {"toolbar_logo.png", {240, 48}},
                                                     {"toolbar_logo_down.png", {240, 48}}};
    for (const char* layout : {"1.0",
                               "2.0_+-_30",
                               "2.0_+-_45",
                               "LCRS",
                               "Quad",
                               "4.0",
                               "5.0_Film",
                               "5.0_ITU",
                               "5.1_Film",
                               "5.1_ITU",
                               "5.1_ITU_Logic",
                               "6.0",
                               "6.1",
                               "7.0",
                               "7.1",
                               "7.1_SDDS",
                               "7.1_SDDS_Logic",
                               "5.0.2",
                               "5.1.2",
                               "5.0.4",
                               "5.1.4",
                               "7.0.2",
                               "7.1.2",
                               "7.0.4",
                               "7.1.4",
                               "9.1.2",
                               "9.1.6",
                               "8.0",
                               "9.1",
                               "11.1",
                               "13.1"})
        sizes[std::string(layout) + ".png"] = {2160, 1008};

    std::set<std::string> decoded;
    for (const auto& [name, bytes] : embedded()) {
        if (!name.ends_with(".png"))
            continue;
        ASSERT_TRUE(sizes.contains(name)) << name;
        const Bytes picture = readPng(bytes);
        EXPECT_EQ(std::pair(picture.width, picture.height), sizes.at(name)) << name;
        decoded.insert(name);
    }
    EXPECT_EQ(decoded.size(), sizes.size());
}

// A file that no source names is weight that every user carries.
TEST(TheEmbeddedResources, AreAllNamedInTheEditorsSources) {
    std::string sources;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(KESTRUM_EDITOR_SOURCES))
        if (entry.path().extension() == ".cpp") {
            std::ifstream stream(entry.path());
            sources.append(std::istreambuf_iterator<char>(stream), {});
        }
    for (int i = 0; i < resources::namedResourceListSize; ++i) {
        const std::regex whole("\\b" + std::string(resources::namedResourceList[i]) + "\\b");
        EXPECT_TRUE(std::regex_search(sources, whole)) << resources::namedResourceList[i];
    }
}

} // namespace
