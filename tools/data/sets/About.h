// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/head/MeasuredSet.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::kestrum::tools {

/// Raised whenever the same input would give other files, so that installed sets are made anew.
inline constexpr int methodNumber = 1;

/// The same for the rooms that are made for a set.
inline constexpr int reverbMethodNumber = 2;

inline constexpr const char* aboutFileName = "about.json";

/// The text that lies beside the files and says where they come from: tool and method, the input's name and
/// SHA-256, origin, licence and citation. It names no time and no folder: equal texts mean equal files,
/// to the byte where machine and libraries are the same, elsewhere to rounding.
/// @throws DataError when the input cannot be read.
std::string aboutText(const std::filesystem::path& input, const Origin& origin);

/// The text that lies in a folder of responses, with what the rooms beside them are made by: method and seed.
/// @throws DataError when the folder has no such text, or none that can be read.
std::string aboutWithReverb(const std::filesystem::path& folder);

/// The same for a text.
std::string aboutWithRooms(const std::string& about);

/// The text that lies in a folder, with a room that a user has made in place of one of the program's own. It stands until
/// the rooms are made anew; made once more, a room replaces itself.
/// @param room  as the product counts rooms.
/// @param facts names and values that say how the room was made.
/// @throws DataError when the folder has no such text, or none that tells of rooms.
std::string aboutWithOwnRoom(const std::filesystem::path& folder, int room,
                             const std::vector<std::pair<std::string, std::string>>& facts);

/// The rooms of a folder that a user has made.
std::vector<int> ownRooms(const std::filesystem::path& folder);

/// The methods that a folder's text names; 0 for one that it does not.
struct AboutMethods {
    int responses = 0;
    int rooms = 0;
};
AboutMethods methodsOf(const std::filesystem::path& folder);

/// Raised whenever the same correction would be folded in differently.
inline constexpr int headphoneMethodNumber = 1;

/// What about.json tells about the headphones that a set was made for.
struct AboutHeadphones {
    std::string fileName; ///< As it was given.
    std::string sha256;
    std::string copyName; ///< Beside the set's files.
    std::string description;
    double levelDb =
        0; ///< By how much the head is louder than without, in the mean between 250 Hz and 12 kHz.
    double leastDb = 0; ///< The smallest and the largest gain at any frequency.
    double mostDb = 0;
    int method = 0;
};

/// A complete set's text with the headphones added.
/// @throws DataError when the text is none of a set.
std::string aboutWithHeadphones(const std::string& about, const AboutHeadphones& headphones);

/// Nothing for a set that is for any headphones.
std::optional<AboutHeadphones> aboutHeadphones(const std::filesystem::path& folder);

/// The few facts by which a set is known in a list; empty where the folder does not tell.
struct AboutSource {
    std::string inputFile;
    std::string origin;
};
AboutSource aboutSource(const std::filesystem::path& folder);

/// What a folder's text says about its head but for headphones: folders of which it is the same hold the same head, but for
/// what headphones have made of it. Empty where the folder does not tell.
std::string aboutOfHead(const std::filesystem::path& folder);

/// Lets a folder no longer vouch for its rooms, or for its head either, while they are made anew: what is left of an
/// interrupted run is not taken for a whole set. A folder without the text stays as it is.
/// @throws DataError when the folder cannot be written.
void withdrawRooms(const std::filesystem::path& folder);
void withdrawAbout(const std::filesystem::path& folder);

/// @throws DataError when the folder cannot be written.
void writeAbout(const std::string& text, const std::filesystem::path& folder);

/// SHA-256 of a file's bytes, in lower-case hexadecimal.
/// @throws DataError when the file cannot be read.
std::string sha256OfFile(const std::filesystem::path& file);

/// SHA-256 of a text.
std::string sha256OfText(std::string_view text);

} // namespace orvane::kestrum::tools
