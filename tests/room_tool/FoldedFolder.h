// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/headphones/HeadphoneFold.h"
#include "data/sets/About.h"

#include "SoundFolder.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace test {

/// Less bass and much more treble: levels that are set for it are not those without it.
inline constexpr const char* correctionText = "Preamp: -2 dB\n"
                                              "Filter 1: ON LSC Fc 300 Hz Gain -6 dB Q 0.70\n"
                                              "Filter 2: ON PK Fc 3000 Hz Gain 8 dB Q 0.80\n";

inline std::string textOfAbout(const std::filesystem::path& folder) {
    std::ifstream stream(folder / orvane::kestrum::tools::aboutFileName);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// Lets a set say that it has the correction above folded in, and carry its file.
/// @return what it would have to be folded with.
inline orvane::kestrum::tools::Headphones declareHeadphones(const std::filesystem::path& set) {
    namespace tools = orvane::kestrum::tools;
    writeBytes(set / "headphones.txt", correctionText);
    tools::Headphones headphones = tools::readHeadphones(set / "headphones.txt");
    const tools::HeadphoneCurve& curve = headphones.curve;
    tools::writeAbout(tools::aboutWithHeadphones(textOfAbout(set),
                                                 {headphones.fileName, headphones.sha256, headphones.copyName,
                                                  headphones.description, curve.levelDb(), curve.leastDb(),
                                                  curve.mostDb(), tools::headphoneMethodNumber}),
                      set);
    return headphones;
}

/// A sound folder as that one whose head and rooms do have it folded in; made at the first call.
inline const std::string& foldedFolder() {
    namespace tools = orvane::kestrum::tools;
    static const TemporaryFolder folder;
    static const std::string path = [] {
        std::filesystem::copy(soundFolder(), folder.path());
        tools::Headphones headphones = declareHeadphones(folder.path());
        const TemporaryFolder input;
        writeBytes(input.file("headphones.txt"), correctionText);
        tools::foldHeadphones(folder.path(), headphones, input.file("headphones.txt"),
                              textOfAbout(folder.path()));
        return folder.path();
    }();
    return path;
}

} // namespace test
