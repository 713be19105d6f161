// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <span>
#include <string_view>
#include <vector>

namespace orvane::kestrum::render {

class SoundFileSink;

/// Where Debian's alsa-utils keeps its recordings of spoken channel names.
inline constexpr const char* spokenNamesFolder = "/usr/share/sounds/alsa";

/// One voice, read from a file.
///
/// Shape   samples of one channel.
/// Units   sampleRate in hertz.
struct Recording {
    unsigned sampleRate = 0;
    std::vector<float> samples;
};

/// @param remedy follows "The recording ... is missing: " in the message, such as "install Debian's package x".
/// @throws RenderError when the file is missing or is not a mono sound file.
Recording readRecording(const std::filesystem::path& path, std::string_view remedy);

/// Writes one turn after another: voice i sounds alone in channel i, while the others are silent.
/// @param voices one for each of the sink's channels.
/// @throws RenderError when the disk takes no more.
void writeInTurn(SoundFileSink& sink, std::span<const std::vector<float>> voices);

} // namespace orvane::kestrum::render
