// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/sets/About.h"

#include "data/DataError.h"
#include "data/rooms/LateReverb.h"
#include "data/sets/WholeFile.h"

#include <nettle/sha2.h>
#include <nlohmann/json.hpp>

#include <array>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <system_error>

namespace orvane::kestrum::tools {

namespace {

std::string textOf(const nlohmann::ordered_json& about) {
    return about.dump(4, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

/// Not an object where there is no text, or none of this kind.
nlohmann::ordered_json readAbout(const std::filesystem::path& folder) {
    std::ifstream stream(folder / aboutFileName);
    return nlohmann::ordered_json::parse(stream, nullptr, false);
}

int numberIn(const nlohmann::ordered_json& about, const char* name) {
    const bool there = about.is_object() && about.contains(name) && about[name].is_number_integer();
    return there ? about[name].get<int>() : 0;
}

std::string digestOf(sha256_ctx& context) {
    std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest{};
    nettle_sha256_digest(&context, digest.size(), digest.data());
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const unsigned byte : digest) {
        text += digits[byte >> 4U];
        text += digits[byte & 15U];
    }
    return text;
}

/// A set may have been made by anybody: its texts are shown, and none of them may steer the terminal.
std::string textIn(const nlohmann::ordered_json& about, const char* name) {
    const bool there = about.is_object() && about.contains(name) && about[name].is_string();
    std::string text = there ? about[name].get<std::string>() : std::string();
    std::ranges::replace_if(
        text, [](unsigned char letter) { return letter < ' ' || letter == 127; }, '?');
    return text;
}

double decibelsIn(const nlohmann::ordered_json& about, const char* name) {
    const bool there = about.is_object() && about.contains(name) && about[name].is_number();
    return there ? about[name].get<double>() : 0;
}

/// In hundredths, so that the text is short and the same everywhere.
double rounded(double decibels) { return std::round(decibels * 100) / 100; }

} // namespace

std::string sha256OfText(std::string_view text) {
    sha256_ctx context{};
    nettle_sha256_init(&context);
    nettle_sha256_update(&context, text.size(), reinterpret_cast<const std::uint8_t*>(text.data()));
    return digestOf(context);
}

std::string sha256OfFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw DataError("\"" + file.string() +
                        "\" cannot be read: name a file that exists and that you may read.");
    sha256_ctx context{};
    nettle_sha256_init(&context);
    std::array<char, 65536> block{};
    while (stream.read(block.data(), block.size()) || stream.gcount() > 0)
        nettle_sha256_update(&context, static_cast<std::size_t>(stream.gcount()),
                             reinterpret_cast<const std::uint8_t*>(block.data()));
    return digestOf(context);
}

std::string aboutText(const std::filesystem::path& input, const Origin& origin) {
    nlohmann::ordered_json about;
    about["what"] = "Head-related responses for the plug-in Orvane KESTRUM";
    about["tool"] = "kestrum " KESTRUM_VERSION;
    about["method"] = methodNumber;
    about["input"] = {{"file", input.filename().string()}, {"sha256", sha256OfFile(input)}};
    about["origin"] = origin.title;
    about["licence"] = origin.licence.empty() ? "not stated by the file" : origin.licence;
    about["citation"] = origin.citation.empty() ? "not stated by the file" : origin.citation;
    return textOf(about);
}

std::string aboutWithReverb(const std::filesystem::path& folder) {
    const nlohmann::ordered_json about = readAbout(folder);
    if (!about.is_object())
        throw DataError("\"" + (folder / aboutFileName).string() +
                        "\" is missing or cannot be read: make the head first with \"kestrum data hrir\".");
    return aboutWithRooms(textOf(about));
}

std::string aboutWithRooms(const std::string& about) {
    nlohmann::ordered_json whole = nlohmann::ordered_json::parse(about);
    whole["rooms"] = {{"method", reverbMethodNumber}, {"seed", reverbSeed}};
    return textOf(whole);
}

std::string aboutWithOwnRoom(const std::filesystem::path& folder, int room,
                             const std::vector<std::pair<std::string, std::string>>& facts) {
    nlohmann::ordered_json about = readAbout(folder);
    if (!about.is_object() || !about.contains("rooms") || !about["rooms"].is_object())
        throw DataError("\"" + (folder / aboutFileName).string() +
                        "\" does not tell of rooms: make them first with \"kestrum data reverb\".");
    nlohmann::ordered_json own = nlohmann::ordered_json::array();
    if (about["rooms"].contains("own") && about["rooms"]["own"].is_array())
        for (const nlohmann::ordered_json& other : about["rooms"]["own"])
            if (numberIn(other, "room") != room)
                own.push_back(other);
    nlohmann::ordered_json made;
    made["room"] = room;
    for (const auto& [name, value] : facts)
        made[name] = value;
    own.push_back(made);
    about["rooms"]["own"] = own;
    return textOf(about);
}

std::vector<int> ownRooms(const std::filesystem::path& folder) {
    const nlohmann::ordered_json about = readAbout(folder);
    std::vector<int> rooms;
    if (about.is_object() && about.contains("rooms") && about["rooms"].is_object() &&
        about["rooms"].contains("own") && about["rooms"]["own"].is_array())
        for (const nlohmann::ordered_json& own : about["rooms"]["own"])
            rooms.push_back(numberIn(own, "room"));
    return rooms;
}

AboutMethods methodsOf(const std::filesystem::path& folder) {
    const nlohmann::ordered_json about = readAbout(folder);
    const bool rooms = about.is_object() && about.contains("rooms");
    return {numberIn(about, "method"), rooms ? numberIn(about["rooms"], "method") : 0};
}

std::string aboutWithHeadphones(const std::string& about, const AboutHeadphones& headphones) {
    nlohmann::ordered_json whole = nlohmann::ordered_json::parse(about, nullptr, false);
    if (!whole.is_object())
        throw DataError("The set does not say how it was made: make it anew with \"kestrum data hrir\".");
    whole["headphones"] = {{"file", headphones.fileName},
                           {"sha256", headphones.sha256},
                           {"copy", headphones.copyName},
                           {"correction", headphones.description},
                           {"levelDb", rounded(headphones.levelDb)},
                           {"leastDb", rounded(headphones.leastDb)},
                           {"mostDb", rounded(headphones.mostDb)},
                           {"method", headphones.method}};
    return textOf(whole);
}

std::optional<AboutHeadphones> aboutHeadphones(const std::filesystem::path& folder) {
    const nlohmann::ordered_json about = readAbout(folder);
    if (!about.is_object() || !about.contains("headphones"))
        return std::nullopt;
    const auto& told = about["headphones"];
    return AboutHeadphones{textIn(told, "file"),        textIn(told, "sha256"),
                           textIn(told, "copy"),        textIn(told, "correction"),
                           decibelsIn(told, "levelDb"), decibelsIn(told, "leastDb"),
                           decibelsIn(told, "mostDb"),  numberIn(told, "method")};
}

AboutSource aboutSource(const std::filesystem::path& folder) {
    const nlohmann::ordered_json about = readAbout(folder);
    const bool input = about.is_object() && about.contains("input");
    return {input ? textIn(about["input"], "file") : std::string(), textIn(about, "origin")};
}

std::string aboutOfHead(const std::filesystem::path& folder) {
    nlohmann::ordered_json about = readAbout(folder);
    if (!about.is_object())
        return "";
    for (const char* beside : {"rooms", "headphones", "tool"}) // the method tells which tools are alike
        about.erase(beside);
    return textOf(about);
}

void withdrawRooms(const std::filesystem::path& folder) {
    nlohmann::ordered_json about = readAbout(folder);
    if (about.is_object() && about.erase("rooms") > 0)
        writeAbout(textOf(about), folder);
}

void withdrawAbout(const std::filesystem::path& folder) {
    std::error_code failure;
    std::filesystem::remove(folder / aboutFileName, failure);
    if (failure)
        throw DataError("\"" + (folder / aboutFileName).string() +
                        "\" cannot be removed: give a folder that you may write to.");
}

void writeAbout(const std::string& text, const std::filesystem::path& folder) {
    writeWhole(Bytes(text.begin(), text.end()), folder / aboutFileName);
}

} // namespace orvane::kestrum::tools
